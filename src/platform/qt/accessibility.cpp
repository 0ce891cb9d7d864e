#include "platform/qt/accessibility.h"

#include <QAccessible>
#include <QAccessibleWidget>
#include <QPointer>
#include <map>

#include "platform/qt/dialog_screen.h"
#include "platform/qt/list_view.h"
#include "platform/qt/menu_overlay.h"
#include "platform/qt/message_screen.h"
#include "platform/qt/phone_frame.h"
#include "platform/qt/step_box.h"

namespace tabelion {

namespace {

// One row of a list. Lives until the list has fewer rows or is gone.
class RowInterface final : public QAccessibleInterface {
 public:
  RowInterface(ListView& view, int row) : view_(&view), row_(row) {}

  bool isValid() const override { return !view_.isNull() && row_ < view_->rowCount(); }
  QObject* object() const override { return nullptr; }
  QAccessibleInterface* childAt(int, int) const override { return nullptr; }
  QAccessibleInterface* parent() const override {
    return QAccessible::queryAccessibleInterface(view_.data());
  }
  QAccessibleInterface* child(int) const override { return nullptr; }
  int childCount() const override { return 0; }
  int indexOfChild(const QAccessibleInterface*) const override { return -1; }
  QString text(QAccessible::Text text) const override {
    return text == QAccessible::Name && isValid() ? view_->rowText(row_) : QString();
  }
  void setText(QAccessible::Text, const QString&) override {}
  QRect rect() const override {
    const QRect place = isValid() ? view_->rowRect(row_) : QRect();
    if (place.isEmpty()) return {};
    return QRect(view_->viewport()->mapToGlobal(place.topLeft()), place.size());
  }
  QAccessible::Role role() const override { return QAccessible::ListItem; }
  QAccessible::State state() const override {
    QAccessible::State state;
    state.invalid = !isValid();
    if (state.invalid) return state;
    const bool selected = view_->selectedRow() == row_;
    state.selectable = true;
    state.focusable = true;
    state.selected = selected;
    state.focused = selected && view_->hasFocus();
    state.offscreen = view_->rowRect(row_).isEmpty();
    return state;
  }

 private:
  QPointer<ListView> view_;
  const int row_;
};

class ListInterface final : public QAccessibleWidget {
 public:
  explicit ListInterface(ListView& view)
      : QAccessibleWidget(&view, QAccessible::List), view_(view) {}
  ~ListInterface() override { forgetFrom(0); }

  QString text(QAccessible::Text text) const override {
    return text == QAccessible::Description ? view_.headingWords() : QAccessibleWidget::text(text);
  }
  int childCount() const override { return view_.rowCount(); }
  QAccessibleInterface* child(int row) const override {
    if (row < 0 || row >= view_.rowCount()) return nullptr;
    const auto known = rows_.find(row);
    if (known != rows_.end()) return QAccessible::accessibleInterface(known->second);
    auto* made = new RowInterface(view_, row);  // owned by the registry
    rows_[row] = QAccessible::registerAccessibleInterface(made);
    return made;
  }
  int indexOfChild(const QAccessibleInterface* wanted) const override {
    for (const auto& [row, id] : rows_) {
      if (QAccessible::accessibleInterface(id) == wanted) return row;
    }
    return -1;
  }
  QAccessibleInterface* childAt(int x, int y) const override {
    return child(view_.rowAt(view_.viewport()->mapFromGlobal(QPoint(x, y))));
  }
  QAccessibleInterface* focusChild() const override {
    return view_.hasFocus() ? child(view_.selectedRow()) : nullptr;
  }
  void forgetFrom(int row) {
    for (auto it = rows_.lower_bound(row); it != rows_.end(); it = rows_.erase(it)) {
      QAccessible::deleteAccessibleInterface(it->second);
    }
  }

 private:
  ListView& view_;
  mutable std::map<int, QAccessible::Id> rows_;
};

class StepInterface final : public QAccessibleWidget, public QAccessibleValueInterface {
 public:
  explicit StepInterface(StepBox& box)
      : QAccessibleWidget(&box, box.role() == StepBox::Role::kNumber ? QAccessible::SpinBox
                                                                     : QAccessible::ComboBox),
        box_(box) {}

  QString text(QAccessible::Text text) const override {
    return text == QAccessible::Value ? box_.value() : QAccessibleWidget::text(text);
  }
  void* interface_cast(QAccessible::InterfaceType type) override {
    if (type == QAccessible::ValueInterface && box_.role() == StepBox::Role::kNumber) {
      return static_cast<QAccessibleValueInterface*>(this);
    }
    return QAccessibleWidget::interface_cast(type);
  }
  QVariant currentValue() const override { return box_.value().toInt(); }
  void setCurrentValue(const QVariant&) override {}
  QVariant maximumValue() const override { return box_.maximum(); }
  QVariant minimumValue() const override { return box_.minimum(); }
  QVariant minimumStepSize() const override { return 1; }

 private:
  StepBox& box_;
};

class MenuRowInterface final : public QAccessibleWidget {
 public:
  explicit MenuRowInterface(MenuRow& row)
      : QAccessibleWidget(&row, row.isSeparator() ? QAccessible::Separator : QAccessible::MenuItem),
        row_(row) {}

  QAccessible::State state() const override {
    QAccessible::State state = QAccessibleWidget::state();
    state.checked = row_.entry().checked;
    state.hasPopup = !row_.entry().children.empty();
    return state;
  }
  QStringList actionNames() const override { return {pressAction()}; }
  void doAction(const QString& action) override {
    if (action == pressAction()) row_.click();
  }

 private:
  MenuRow& row_;
};

QAccessibleInterface* make(const QString&, QObject* object) {
  if (auto* list = dynamic_cast<ListView*>(object)) return new ListInterface(*list);
  if (auto* box = dynamic_cast<StepBox*>(object)) return new StepInterface(*box);
  if (auto* row = dynamic_cast<MenuRow*>(object)) return new MenuRowInterface(*row);
  if (auto* panel = dynamic_cast<MenuPanel*>(object)) {
    return new QAccessibleWidget(panel, QAccessible::PopupMenu);
  }
  if (auto* message = dynamic_cast<MessageScreen*>(object)) {
    return new QAccessibleWidget(message, QAccessible::AlertMessage);
  }
  if (auto* screen = dynamic_cast<DialogScreen*>(object)) {
    return new QAccessibleWidget(screen, QAccessible::Dialog);
  }
  if (auto* frame = dynamic_cast<PhoneFrame*>(object)) {
    return new QAccessibleWidget(frame, QAccessible::Window);
  }
  return nullptr;
}

}  // namespace

void installAccessibility() {
  QAccessible::installFactory(make);
}

void rowsChanged(ListView& view) {
  if (auto* list = dynamic_cast<ListInterface*>(QAccessible::queryAccessibleInterface(&view))) {
    list->forgetFrom(view.rowCount());
  }
  QAccessibleEvent reset(&view, QAccessible::ObjectReorder);
  QAccessible::updateAccessibility(&reset);
}

void announceRow(ListView& view) {
  if (!view.hasFocus() || view.selectedRow() < 0) return;
  for (const QAccessible::Event kind : {QAccessible::Focus, QAccessible::Selection}) {
    QAccessibleEvent event(&view, kind);
    event.setChild(view.selectedRow());
    QAccessible::updateAccessibility(&event);
  }
}

void StepBox::changed() {
  QAccessibleValueChangeEvent event(this, value_);
  QAccessible::updateAccessibility(&event);
}

}  // namespace tabelion
