// SPDX-License-Identifier: GPL-3.0-or-later
#include "uFilterDialog.h"

#include "dmMain.h"
#include "uColumnNames.h"
#include "uDefaults.h"
#include "uFieldEditor.h"
#include "uFieldText.h"
#include "uRibbonButton.h"
#include "uTHStrings.h"
#include "uThemePaint.h"
#include "uThemeStyle.h"
#include "uViewFilters.h"

#include <QComboBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QPushButton>
#include <QScrollArea>
#include <QVBoxLayout>

#include <algorithm>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

constexpr int DeepestGroup = 4; // what still fits on a screen

// The entries of FLogic.
enum TLogicEntry : int { leAll, leAny, leNotAll, leNotAny };

bool NeedsValue(TFilterOp op) { return op != foIsNull && op != foIsNotNull; }

} // namespace

TFilterRow::TFilterRow(TDataModuleMain& dataModule, const std::vector<TFieldDef>& fields, QWidget* parent)
    : QWidget(parent), FData(dataModule), FFields(fields), FField(new QComboBox(this)), FOp(new QComboBox(this))
{
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(6);
    for (const TFieldDef& field : fields)
        FField->addItem(ColumnLabel(field, Defaults()));
    FField->setAccessibleName(GetLanguageString(u"cSMultiEditField"_s));
    FOp->setAccessibleName(GetLanguageString(u"cSFilterOperator"_s));
    TRibbonButton* remove = MakeIconButton(u"x"_s, u"cSFilterRemove"_s, this);
    row->addWidget(FField, 3);
    row->addWidget(FOp, 3);
    row->addWidget(remove);
    connect(FField, &QComboBox::activated, this, &TFilterRow::FillOps);
    connect(FOp, &QComboBox::activated, this, &TFilterRow::MakeValues);
    connect(remove, &QToolButton::clicked, this, &TFilterRow::removeRequested);
    FillOps();
}

const TFieldDef& TFilterRow::Field() const { return FFields[static_cast<size_t>(std::max(0, FField->currentIndex()))]; }

TFilterOp TFilterRow::Op() const { return static_cast<TFilterOp>(FOp->currentData().toInt()); }

void TFilterRow::FillOps()
{
    FOp->clear();
    for (const TFilterOp op : FilterOpsOf(Field()))
        FOp->addItem(FilterOpText(op), static_cast<int>(op));
    MakeValues();
}

void TFilterRow::MakeValues()
{
    delete FValues;
    FFirst = FSecond = nullptr;
    FPeriod = nullptr;
    FValues = new QWidget(this);
    auto* row = new QHBoxLayout(FValues);
    row->setContentsMargins(0, 0, 0, 0);
    if (Op() == foInPeriod) {
        FPeriod = new QComboBox(FValues);
        for (int period = 0; period < FilterPeriodCount; ++period)
            FPeriod->addItem(FilterPeriodText(static_cast<TFilterPeriod>(period)));
        row->addWidget(FPeriod);
    } else if (NeedsValue(Op())) {
        const auto add = [&] {
            auto* editor = new TFieldEditor(FData, Field(), FValues);
            connect(editor, &TFieldEditor::cancelled, window(), [this] { static_cast<QDialog*>(window())->reject(); });
            connect(editor, &TFieldEditor::moved, this, [this](int direction) { focusNextPrevChild(direction > 0); });
            row->addWidget(editor);
            return editor;
        };
        FFirst = add();
        if (Op() == foBetween)
            FSecond = add();
    }
    static_cast<QHBoxLayout*>(layout())->insertWidget(2, FValues, 4);
}

TVariant TFilterRow::StoredValue(const TFieldEditor& editor)
{
    const TVariant value = editor.Value().value_or(TVariant());
    return value.typeId() == QMetaType::QDate ? TVariant(value.toDate().toString(Qt::ISODate)) : value;
}

std::optional<TFilterCriterion> TFilterRow::Criterion() const
{
    TFilterCriterion criterion{Field().Name, Op(), {}, {}};
    if (FPeriod)
        criterion.Value = FPeriod->currentIndex();
    for (TFieldEditor* editor : {FFirst, FSecond}) {
        if (editor && (!editor->Value() || VarIsNull(*editor->Value()))) {
            editor->ShowRefusal(GetLanguageString(u"cSFilterValueNeeded"_s));
            return {};
        }
    }
    if (!FFirst)
        return criterion;
    const auto shown = [&](const TFieldEditor& editor) { return FieldText(FData, Field(), *editor.Value()); };
    criterion.Value = StoredValue(*FFirst);
    criterion.DisplayText = shown(*FFirst);
    if (FSecond) {
        criterion.Value = QVariantList{StoredValue(*FFirst), StoredValue(*FSecond)};
        criterion.DisplayText += u" – "_s + shown(*FSecond);
    }
    return criterion;
}

void TFilterRow::SetCriterion(const TFilterCriterion& criterion)
{
    const auto field = std::ranges::find_if(
        FFields, [&](const TFieldDef& def) { return def.Name.compare(criterion.Column, Qt::CaseInsensitive) == 0; });
    if (field == FFields.end())
        return; // a column that is gone leaves an empty row
    FField->setCurrentIndex(static_cast<int>(field - FFields.begin()));
    FillOps();
    FOp->setCurrentIndex(std::max(0, FOp->findData(static_cast<int>(criterion.Op))));
    MakeValues();
    if (FPeriod)
        FPeriod->setCurrentIndex(criterion.Value.toInt());
    const QVariantList values = FSecond ? criterion.Value.toList() : QVariantList{criterion.Value};
    const auto set = [&](TFieldEditor* editor, int index) {
        TVariant value = values.value(index);
        if (Field().Kind == fkDate)
            value = QDate::fromString(value.toString(), Qt::ISODate);
        if (editor)
            editor->SetValue(value);
    };
    set(FFirst, 0);
    set(FSecond, 1);
}

void TFilterRow::Begin() { FField->setFocus(); }

TFilterGroupBox::TFilterGroupBox(TDataModuleMain& dataModule, const std::vector<TFieldDef>& fields, int depth,
                                 QWidget* parent)
    : QWidget(parent),
      FData(dataModule),
      FFields(fields),
      FDepth(depth),
      FLogic(new QComboBox(this)),
      FColumn(new QVBoxLayout(this))
{
    FColumn->setContentsMargins(depth == 0 ? 4 : 14, 6, 4, 6);
    FColumn->setSpacing(6);
    for (const QString& key : {u"cSFilterAll"_s, u"cSFilterAny"_s, u"cSFilterNotAll"_s, u"cSFilterNotAny"_s})
        FLogic->addItem(GetLanguageString(key));
    FLogic->setAccessibleName(GetLanguageString(u"cSFilterLogic"_s));
    auto* head = new QHBoxLayout;
    head->addWidget(FLogic);
    head->addStretch(1);
    auto* addRow = new QPushButton(GetLanguageString(u"cSFilterAddCondition"_s), this);
    addRow->setAutoDefault(false);
    head->addWidget(addRow);
    connect(addRow, &QPushButton::clicked, this, [this] { AddRow()->Begin(); });
    if (depth < DeepestGroup) {
        auto* addGroup = new QPushButton(GetLanguageString(u"cSFilterAddGroup"_s), this);
        addGroup->setAutoDefault(false);
        head->addWidget(addGroup);
        connect(addGroup, &QPushButton::clicked, this, [this] { AddGroup()->AddRow()->Begin(); });
    }
    if (depth > 0) {
        TRibbonButton* remove = MakeIconButton(u"x"_s, u"cSFilterRemove"_s, this);
        head->addWidget(remove);
        connect(remove, &QToolButton::clicked, this, &TFilterGroupBox::removeRequested);
    }
    FColumn->addLayout(head);
}

TFilterRow* TFilterGroupBox::AddRow()
{
    auto* row = new TFilterRow(FData, FFields, this);
    connect(row, &TFilterRow::removeRequested, this, [this, row] {
        FRows.removeAll(row);
        row->hide();
        row->deleteLater();
    });
    FColumn->insertWidget(1 + static_cast<int>(FRows.size()), row); // behind the last condition, before the groups
    FRows << row;
    row->show();
    return row;
}

TFilterGroupBox* TFilterGroupBox::AddGroup()
{
    auto* group = new TFilterGroupBox(FData, FFields, FDepth + 1, this);
    connect(group, &TFilterGroupBox::removeRequested, this, [this, group] {
        FGroups.removeAll(group);
        group->hide();
        group->deleteLater();
    });
    FColumn->addWidget(group);
    FGroups << group;
    group->show();
    return group;
}

void TFilterGroupBox::SetNode(const TFilterNode& node)
{
    FLogic->setCurrentIndex(node.Logic == flAny ? (node.Negated ? leNotAny : leAny)
                                                : (node.Negated ? leNotAll : leAll));
    for (const TFilterCriterion& criterion : node.Criteria)
        AddRow()->SetCriterion(criterion);
    for (const TFilterNode& group : node.Groups)
        AddGroup()->SetNode(group);
}

std::optional<TFilterNode> TFilterGroupBox::Node() const
{
    TFilterNode node;
    const int logic = FLogic->currentIndex();
    node.Logic = logic == leAny || logic == leNotAny ? flAny : flAll;
    node.Negated = logic == leNotAll || logic == leNotAny;
    for (const TFilterRow* row : FRows) {
        const std::optional<TFilterCriterion> criterion = row->Criterion();
        if (!criterion)
            return {};
        node.Criteria.push_back(*criterion);
    }
    for (const TFilterGroupBox* group : FGroups) {
        std::optional<TFilterNode> inner = group->Node();
        if (!inner)
            return {};
        if (!inner->IsEmpty())
            node.Groups.push_back(std::move(*inner));
    }
    return node;
}

void TFilterGroupBox::paintEvent(QPaintEvent*)
{
    if (FDepth == 0)
        return;
    QPainter painter(this);
    const qreal x = isRightToLeft() ? width() - 7 : 5;
    painter.fillRect(QRectF(x, 2, 2, height() - 4), CurrentTheme().Outline);
}

TFilterDialog::TFilterDialog(TDataModuleMain& dataModule, std::vector<TFieldDef> fields, const TFilterNode& node,
                             QWidget* parent)
    : TDialog(u"TFilterDialog"_s, GetLanguageString(u"cSactAdvancedSearch"_s), parent)
{
    for (TFieldDef& field : fields) {
        const bool custom = field.Name.startsWith("Custom"_L1);
        if (field.Kind != fkBlob && field.Name != Col::Rating && (custom || !field.LabelKey.isEmpty()) &&
            IsFieldShown(field, Defaults()))
            FFields.push_back(std::move(field));
    }
    std::ranges::sort(FFields, [&](const TFieldDef& a, const TFieldDef& b) {
        return ColumnLabel(a, Defaults()).localeAwareCompare(ColumnLabel(b, Defaults())) < 0;
    });
    auto* scroll = new QScrollArea(this);
    scroll->setFocusPolicy(Qt::NoFocus);
    auto* content = new QWidget(scroll);
    auto* column = new QVBoxLayout(content);
    column->setContentsMargins(4, 4, 4, 4);
    FRoot = new TFilterGroupBox(dataModule, FFields, 0, content);
    column->addWidget(FRoot);
    column->addStretch(1);
    scroll->setWidget(content);
    scroll->setWidgetResizable(true);
    Body()->addWidget(scroll, 1);
    FRoot->SetNode(node);
    if (node.IsEmpty())
        FRoot->AddRow()->Begin();
    connect(AddSideButton(GetLanguageString(u"cSFilterNone"_s)), &QPushButton::clicked, this, [this] {
        FNode = {};
        TDialog::accept();
    });
    AddButtons(GetLanguageString(u"cSFilterApply"_s));
    SetFirstSize({820, 460});
}

void TFilterDialog::accept()
{
    std::optional<TFilterNode> node = FRoot->Node();
    if (!node)
        return;
    FNode = std::move(*node);
    TDialog::accept();
}

} // namespace Kestrune
