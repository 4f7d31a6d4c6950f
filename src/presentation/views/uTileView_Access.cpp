// SPDX-License-Identifier: GPL-3.0-or-later
#include "uTilePainter.h"
#include "uTileView.h"

#include <QAccessible>
#include <QAccessibleWidget>
#include <QHash>
#include <QPointer>

namespace Kestrune {

namespace {

TTilePainter* PainterOf(const TTileView* view) { return view ? view->Painter() : nullptr; }

// One cell: a list item with the text of its painter. It holds the row, not an index: the owner drops all of them when
// the model changes.
class TTileCellAccess : public QAccessibleInterface, public QAccessibleActionInterface {
public:
    TTileCellAccess(TTileView* view, int row) : FView(view), FRow(row) {}

    bool isValid() const override { return FView && Index().isValid(); }
    QObject* object() const override { return nullptr; }
    QAccessibleInterface* childAt(int, int) const override { return nullptr; }
    QAccessibleInterface* parent() const override { return QAccessible::queryAccessibleInterface(FView); }
    QAccessibleInterface* child(int) const override { return nullptr; }
    int childCount() const override { return 0; }
    int indexOfChild(const QAccessibleInterface*) const override { return -1; }
    QAccessible::Role role() const override { return QAccessible::ListItem; }
    void setText(QAccessible::Text, const QString&) override {}

    QString text(QAccessible::Text kind) const override
    {
        return kind == QAccessible::Name && isValid() && PainterOf(FView) ? PainterOf(FView)->AccessibleText(Index())
                                                                          : QString();
    }

    QRect rect() const override
    {
        if (!isValid())
            return {};
        const QRect cell = FView->visualRect(Index());
        return {FView->viewport()->mapToGlobal(cell.topLeft()), cell.size()};
    }

    QAccessible::State state() const override
    {
        QAccessible::State state;
        if (!isValid()) {
            state.invalid = true;
            return state;
        }
        state.selectable = state.multiSelectable = state.extSelectable = state.focusable = true;
        state.selected = FView->selectionModel()->isSelected(Index());
        state.focused = FView->hasFocus() && FView->currentIndex().row() == FRow;
        state.offscreen = !FView->viewport()->rect().intersects(FView->visualRect(Index()));
        return state;
    }

    void* interface_cast(QAccessible::InterfaceType type) override
    {
        return type == QAccessible::ActionInterface ? static_cast<QAccessibleActionInterface*>(this) : nullptr;
    }

    QStringList actionNames() const override { return {pressAction(), toggleAction()}; }
    QStringList keyBindingsForAction(const QString&) const override { return {}; }

    void doAction(const QString& action) override
    {
        if (!isValid())
            return;
        if (action == pressAction())
            Q_EMIT FView->activated(Index());
        else if (action == toggleAction())
            FView->selectionModel()->setCurrentIndex(Index(), QItemSelectionModel::Toggle | QItemSelectionModel::Rows);
    }

private:
    QModelIndex Index() const
    {
        return FView->model() ? FView->model()->index(FRow, 0, FView->rootIndex()) : QModelIndex();
    }

    QPointer<TTileView> FView;
    int FRow;
};

// The view: a list whose children are made when they are asked for.
class TTileViewAccess : public QAccessibleWidget {
public:
    explicit TTileViewAccess(TTileView* view) : QAccessibleWidget(view, QAccessible::List) {}

    ~TTileViewAccess() override
    {
        for (const QAccessible::Id id : std::as_const(FCells))
            QAccessible::deleteAccessibleInterface(id);
    }

    int childCount() const override { return View()->model() ? View()->model()->rowCount(View()->rootIndex()) : 0; }

    QAccessibleInterface* child(int row) const override
    {
        if (row < 0 || row >= childCount())
            return nullptr;
        const auto known = FCells.constFind(row);
        if (known != FCells.cend())
            return QAccessible::accessibleInterface(*known);
        auto* cell = new TTileCellAccess(View(), row);
        FCells.insert(row, QAccessible::registerAccessibleInterface(cell));
        return cell;
    }

    QAccessibleInterface* childAt(int x, int y) const override
    {
        const QPoint point = View()->viewport()->mapFromGlobal(QPoint(x, y));
        return View()->viewport()->rect().contains(point) ? child(View()->indexAt(point).row()) : nullptr;
    }

    int indexOfChild(const QAccessibleInterface* cell) const override
    {
        for (auto it = FCells.cbegin(); it != FCells.cend(); ++it)
            if (QAccessible::accessibleInterface(it.value()) == cell)
                return it.key();
        return -1;
    }

    QAccessibleInterface* focusChild() const override
    {
        return View()->hasFocus() ? child(View()->currentIndex().row()) : nullptr;
    }

    QString text(QAccessible::Text kind) const override
    {
        const QString own = QAccessibleWidget::text(kind);
        return kind == QAccessible::Value && own.isEmpty() ? QString::number(childCount()) : own;
    }

private:
    TTileView* View() const { return static_cast<TTileView*>(object()); }

    mutable QHash<int, QAccessible::Id> FCells;
};

QAccessibleInterface* MakeTileViewAccess(const QString&, QObject* object)
{
    auto* view = qobject_cast<TTileView*>(object);
    return view ? new TTileViewAccess(view) : nullptr;
}

} // namespace

void InstallTileViewAccessibility()
{
    // The registry keeps a factory once, however often it is given.
    QAccessible::installFactory(MakeTileViewAccess);
}

} // namespace Kestrune
