// The seam's list over its widget.
#include "platform/qt/control.h"
#include "platform/qt/list_view.h"

namespace tabelion {

namespace {

class ListOverView final : public ControlOf<ListControl> {
 public:
  ListOverView(ControlHost& control_host, const ControlTemplate& from, ListView* widget)
      : ControlOf(control_host, from, *widget), view_(widget) {}

  int selection() const override { return view_->selectedRow(); }
  void select(int index) override { view_->selectRow(index); }
  void setColumns(const std::vector<ListColumn>& columns) override { view_->setColumns(columns); }
  const std::vector<ListColumn>& columns() const override { return view_->columns(); }
  void setRowCount(int count) override { view_->setRowCount(count); }
  int rowCount() const override { return view_->rowCount(); }
  void selectRow(int row) override { view_->selectRow(row); }
  int selectedRow() const override { return view_->selectedRow(); }
  void scrollSideways(int pixels) override { view_->scrollSideways(pixels); }
  void repaint() override { view_->viewport()->update(); }
  bool takeKey(const KeyPress& press) override { return view_->takeKey(press.key); }
  void applyScale() override {
    ControlOf::applyScale();
    view_->applyScale();
  }

 private:
  ListView* view_;
};

}  // namespace

std::unique_ptr<ScreenControl> makeList(ControlHost& host, const ControlTemplate& from,
                                        QWidget& parent) {
  const ControlId id = from.id;
  ListView::Source source;
  source.paint = [&host, id](int row, ListPainter& painter, const Rect& area) {
    host.paintRow(id, row, painter, area);
  };
  source.text = [&host, id](int row) { return host.rowText(id, row); };
  source.selected = [&host, id] { host.notify(id, Notice::kSelectionChanged); };
  source.activated = [&host, id] { host.notify(id, Notice::kActivated); };
  return std::make_unique<ListOverView>(host, from,
                                        new ListView(host.scale(), std::move(source), &parent));
}

}  // namespace tabelion
