// SPDX-License-Identifier: MIT
// A view on the tree of folders that tells its owner what a person does in it.
#include "ui/ucBrowse.h"

#include <QHeaderView>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QTreeView>
#include <QVBoxLayout>

#include "frame/CommandScope.h"
#include "frame/ErrorReporting.h"
#include "ui/FolderTree.h"
#include "ui/QtText.h"

namespace quillmarsh {

namespace {

// The right button does nothing: it neither shows a menu nor selects. Rows are as wide as the view
// at least.
class TreeView final : public QTreeView {
 public:
  using QTreeView::QTreeView;

 protected:
  void resizeEvent(QResizeEvent* event) override {
    QTreeView::resizeEvent(event);
    header()->setMinimumSectionSize(viewport()->width());
  }
  void mousePressEvent(QMouseEvent* event) override {
    if (event->button() != Qt::RightButton) QTreeView::mousePressEvent(event);
  }
  void mouseReleaseEvent(QMouseEvent* event) override {
    if (event->button() != Qt::RightButton) QTreeView::mouseReleaseEvent(event);
  }
  void mouseDoubleClickEvent(QMouseEvent* event) override {
    if (event->button() != Qt::RightButton) QTreeView::mouseDoubleClickEvent(event);
  }
};

}  // namespace

struct ucBrowse::Tree {
  explicit Tree(ucBrowse& owner);

  // What is selected, which a row that merely has the focus is not; invalid for nothing.
  [[nodiscard]] QModelIndex Selected() const;
  void Build();
  void SelectionChanged();
  void Select(const QModelIndex& place);
  void Refresh();

  ucBrowse& owner;
  TreeView view;
  FolderTree model;
  bool isBuilt = false;
  bool isRefreshing = false;
  Text lastTold;
};

ucBrowse::Tree::Tree(ucBrowse& itsOwner) : owner(itsOwner), view(&itsOwner) {
  view.setObjectName(QStringLiteral("SystemTreeView"));
  view.setAccessibleName(QStringLiteral("Folders"));
  view.setHeaderHidden(true);
  view.setUniformRowHeights(true);
  view.setExpandsOnDoubleClick(false);  // a double click is the owner's
  view.setContextMenuPolicy(Qt::PreventContextMenu);
  view.setEditTriggers(QAbstractItemView::NoEditTriggers);
  view.setSelectionMode(QAbstractItemView::SingleSelection);
  // As wide as the names that are seen, so that a long one can be scrolled to.
  view.header()->setStretchLastSection(false);
  view.header()->setSectionResizeMode(QHeaderView::ResizeToContents);
  view.setModel(&model);

  connect(&view, &QTreeView::expanded, &model, &FolderTree::Open);
  connect(&view, &QTreeView::collapsed, &model, &FolderTree::Close);
  connect(view.selectionModel(), &QItemSelectionModel::selectionChanged, &owner,
          [this] { SelectionChanged(); });
  connect(&view, &QTreeView::doubleClicked, &owner, [this](const QModelIndex& index) {
    if (!model.PathOf(index).empty()) emit owner.DoubleClickEvent();
  });
}

QModelIndex ucBrowse::Tree::Selected() const {
  const QModelIndexList selected = view.selectionModel()->selectedIndexes();
  return selected.isEmpty() ? QModelIndex() : selected.constFirst();
}

void ucBrowse::Tree::Build() {
  if (isBuilt) return;
  isBuilt = true;
  model.Rebuild();
  emit owner.StatusEvent(QStringLiteral("SystemTreeView Initalized"));
}

void ucBrowse::Tree::SelectionChanged() {
  const Text path = model.PathOf(Selected());
  if (isRefreshing || path.empty() || path == lastTold) return;
  lastTold = path;
  emit owner.PathEvent(ToQString(path));
}

void ucBrowse::Tree::Select(const QModelIndex& place) {
  for (QModelIndex above = place.parent(); above.isValid(); above = above.parent())
    view.expand(above);
  view.setCurrentIndex(place);
  view.scrollTo(place);
}

void ucBrowse::Tree::Refresh() {
  const Text path = owner.Path();
  QModelIndex top = Selected();
  const bool wasOpen = top.isValid() && view.isExpanded(top);
  while (top.parent().isValid()) top = top.parent();
  const Text rootPath = model.PathOf(top);
  const bool isDrive = path.empty() || model.IsDrive(top);
  isRefreshing = true;
  model.Rebuild();
  QModelIndex place;
  if (!path.empty()) place = model.NearestPlaceOf(path, model.RootWith(rootPath, isDrive));
  if (place.isValid()) {
    Select(place);
    if (wasOpen) view.expand(place);
  }
  isRefreshing = false;
  SelectionChanged();
}

ucBrowse::ucBrowse(QWidget* parent) : QWidget(parent), mTree(std::make_unique<Tree>(*this)) {
  auto* const layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addWidget(&mTree->view);
  setFocusProxy(&mTree->view);
  mTree->view.installEventFilter(this);
}

ucBrowse::~ucBrowse() {
  if (mTree->isBuilt) emit StatusEvent(QStringLiteral("SystemTreeView ShutDown"));
}

Text ucBrowse::Path() const {
  return mTree->model.PathOf(mTree->Selected());
}

void ucBrowse::SetPath(TextView path) {
  static_cast<void>(Guarded(u"ucBrowse.SetPath", [&] {
    mTree->Build();
    const QModelIndex place = mTree->model.PlaceOf(path);
    if (place.isValid()) mTree->Select(place);
  }));
}

void ucBrowse::Refresh() {
  if (CommandScope::IsRunning()) return;  // the machine is the command's
  static_cast<void>(Guarded(u"ucBrowse.Refresh", [this] {
    mTree->Build();
    mTree->Refresh();
  }));
}

void ucBrowse::showEvent(QShowEvent* event) {
  QWidget::showEvent(event);
  mTree->Build();
}

bool ucBrowse::eventFilter(QObject* watched, QEvent* event) {
  if (watched != &mTree->view || event->type() != QEvent::KeyPress)
    return QWidget::eventFilter(watched, event);
  switch (static_cast<QKeyEvent*>(event)->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
      if (!Path().empty()) emit DoubleClickEvent();
      return true;
    case Qt::Key_Asterisk:  // would open a whole drive
      return true;
    default:
      return QWidget::eventFilter(watched, event);
  }
}

}  // namespace quillmarsh
