// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "uColumns.h"
#include "uDialog.h"
#include "uFilter.h"

#include <functional>
#include <memory>
#include <vector>

class QComboBox;
class QVBoxLayout;

namespace Kestrune {

class TDataModuleMain;
class TFieldEditor;
class TFilterGroupBox;

/// One condition of the filter builder: field, operator, and the value in the field's editor.
class TFilterRow : public QWidget {
    Q_OBJECT
public:
    TFilterRow(TDataModuleMain& dataModule, const std::vector<TFieldDef>& fields, QWidget* parent);

    void SetCriterion(const TFilterCriterion& criterion);
    /// Nothing when the value is none of the field's kind.
    std::optional<TFilterCriterion> Criterion() const;
    void Begin();

Q_SIGNALS:
    void removeRequested();

private:
    const TFieldDef& Field() const;
    TFilterOp Op() const;
    void FillOps();
    void MakeValues();
    static TVariant StoredValue(const TFieldEditor& editor);

    TDataModuleMain& FData;
    const std::vector<TFieldDef>& FFields;
    QComboBox* FField;
    QComboBox* FOp;
    QWidget* FValues = nullptr;
    TFieldEditor* FFirst = nullptr;
    TFieldEditor* FSecond = nullptr;
    QComboBox* FPeriod = nullptr;
};

/// A group of conditions and groups: all or any of them, or not.
class TFilterGroupBox : public QWidget {
    Q_OBJECT
public:
    TFilterGroupBox(TDataModuleMain& dataModule, const std::vector<TFieldDef>& fields, int depth, QWidget* parent);

    void SetNode(const TFilterNode& node);
    /// Nothing when a value within is none of its field's kind; the keyboard is then there.
    std::optional<TFilterNode> Node() const;
    TFilterRow* AddRow();
    TFilterGroupBox* AddGroup();

Q_SIGNALS:
    void removeRequested();

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    TDataModuleMain& FData;
    const std::vector<TFieldDef>& FFields;
    int FDepth;
    QComboBox* FLogic;
    QVBoxLayout* FColumn;
    QList<TFilterRow*> FRows;
    QList<TFilterGroupBox*> FGroups;
};

/// The filter builder.
class TFilterDialog : public TDialog {
    Q_OBJECT
public:
    /// The fields are those of a list cursor.
    TFilterDialog(TDataModuleMain& dataModule, std::vector<TFieldDef> fields, const TFilterNode& node, QWidget* parent);

    const TFilterNode& Node() const { return FNode; }
    void accept() override;

private:
    std::vector<TFieldDef> FFields;
    TFilterGroupBox* FRoot;
    TFilterNode FNode;
};

} // namespace Kestrune
