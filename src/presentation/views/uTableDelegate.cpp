// SPDX-License-Identifier: GPL-3.0-or-later
#include "uTableDelegate.h"

#include "uDefaults.h"
#include "uFieldEditor.h"
#include "uFieldText.h"
#include "uListModel.h"

namespace Kestrune {

TTableDelegate::TTableDelegate(TCoverCache* covers, TListModel& model, QObject* parent)
    : TCellDelegate(covers, parent), FModel(model)
{}

QWidget* TTableDelegate::createEditor(QWidget* parent, const QStyleOptionViewItem&, const QModelIndex& index) const
{
    const TFieldDef* field = FModel.FieldDefOf(index.column());
    if (!field)
        return nullptr;
    auto* editor = new TFieldEditor(FModel.Data(), *field, parent);
    editor->TellWhatIsKept();
    auto* self = const_cast<TTableDelegate*>(this); // Qt makes editors in a const call
    connect(editor, &TFieldEditor::committed, self, [self, editor] { self->Finish(editor, NoHint); });
    connect(editor, &TFieldEditor::moved, self,
            [self, editor](int direction) { self->Finish(editor, direction > 0 ? EditNextItem : EditPreviousItem); });
    connect(editor, &TFieldEditor::cancelled, self, [self, editor] {
        editor->setProperty("closing", true);
        Q_EMIT self->closeEditor(editor, RevertModelCache);
    });
    return editor;
}

void TTableDelegate::Finish(TFieldEditor* editor, EndEditHint hint)
{
    if (editor->property("closing").toBool())
        return;
    FRefused = false;
    Q_EMIT commitData(editor);
    if (FRefused)
        return;
    editor->setProperty("closing", true); // losing the focus tells once more
    Q_EMIT closeEditor(editor, hint);
}

void TTableDelegate::setEditorData(QWidget* editor, const QModelIndex& index) const
{
    auto* field = static_cast<TFieldEditor*>(editor);
    if (!field->IsModified()) // a refresh meanwhile does not take away what is being typed
        field->SetValue(index.data(Qt::EditRole));
}

void TTableDelegate::setModelData(QWidget* editor, QAbstractItemModel* model, const QModelIndex& index) const
{
    auto* field = static_cast<TFieldEditor*>(editor);
    if (!field->IsModified())
        return;
    const std::optional<TVariant> value = field->Value();
    if (value && model->setData(index, *value, Qt::EditRole))
        return;
    FRefused = true;
    QString sentence;
    if (!value) {
        sentence = FieldRefusal(ColumnLabel(field->Field(), Defaults()), field->Field());
        if (FTell)
            FTell(sentence);
    }
    field->ShowRefusal(sentence);
}

void TTableDelegate::updateEditorGeometry(QWidget* editor, const QStyleOptionViewItem& option, const QModelIndex&) const
{
    // Stars and dates need more room than a narrow column has.
    QRect box = option.rect;
    if (box.width() < editor->minimumSizeHint().width())
        box.setWidth(editor->minimumSizeHint().width());
    editor->setGeometry(box);
}

} // namespace Kestrune
