// SPDX-License-Identifier: MIT
// Where the controls stand at design size. It follows from what they want in the fonts of the
// moment; what becomes of it in a window of another size is the layout's.
#include <QGuiApplication>
#include <QScreen>
#include <QStyle>
#include <algorithm>

#include "ui/MainWindowParts.h"

namespace quillmarsh {

using Parts = frmFindDuplicates::Parts;

namespace {

constexpr int kLeastDesignWidth = 860;
constexpr int kLeastDesignHeight = 500;
constexpr int kLinesOfFolderList = 6;
// The share of the list of groups in the results view.
constexpr double kShareOfGroups = 0.34;

struct Gaps {
  explicit Gaps(const QWidget& widget)
      : margin(std::max(6, widget.style()->pixelMetric(QStyle::PM_LayoutLeftMargin))),
        gap(std::max(4, widget.style()->pixelMetric(QStyle::PM_LayoutVerticalSpacing))) {}
  int margin;
  int gap;
};

// The strip at the lower edge, which belongs to the progress bar.
int StripHeight(const Parts& parts, const Gaps& gaps) {
  return parts.pbProgress->sizeHint().height() + gaps.gap;
}

int BarHeight(const ToolBar& bar) {
  return bar.sizeHint().height();
}

void PlaceSearchView(Parts& parts, const Gaps& gaps, QSize size) {
  const int optionsWidth = std::max(parts.smtSearchOptions->sizeHint().width(),
                                    (size.width() - 3 * gaps.margin) * 2 / 5);
  const int leftWidth = size.width() - optionsWidth - 3 * gaps.margin;
  const int optionsLeft = size.width() - gaps.margin - optionsWidth;
  const int headingTop = BarHeight(*parts.smtSearchToolbar) + gaps.gap;
  const int headingHeight = parts.mfrmSearchLocations->sizeHint().height();
  const int top = headingTop + headingHeight + gaps.gap;
  const int bottom = size.height() - StripHeight(parts, gaps) - gaps.gap;

  parts.mfrmSearchLocations->setGeometry(gaps.margin, headingTop, leftWidth, headingHeight);
  parts.mfrmSearchOptions->setGeometry(optionsLeft, headingTop, optionsWidth, headingHeight);

  const QSize add = parts.mb_cmdAddFolder->sizeHint();
  const QSize remove = parts.mb_cmdRemoveFolder->sizeHint();
  const int buttonTop = bottom - add.height();
  parts.mb_cmdAddFolder->setGeometry(gaps.margin, buttonTop, add.width(), add.height());
  parts.mb_cmdRemoveFolder->setGeometry(gaps.margin + add.width() + gaps.gap, buttonTop,
                                        remove.width(), remove.height());
  const int listHeight = parts.ulstFoldersToSearch->fontMetrics().height() * kLinesOfFolderList;
  const int listTop = buttonTop - gaps.gap - listHeight;
  parts.ulstFoldersToSearch->setGeometry(gaps.margin, listTop, leftWidth, listHeight);
  parts.ucBrowseForFolder->setGeometry(gaps.margin, top, leftWidth, listTop - gaps.gap - top);

  const int animationHeight = std::max(add.height(), parts.aniSearchProgress->sizeHint().height());
  parts.aniSearchProgress->setGeometry(optionsLeft, bottom - animationHeight, optionsWidth,
                                       animationHeight);
  parts.smtSearchOptions->setGeometry(optionsLeft, top, optionsWidth,
                                      bottom - animationHeight - gaps.gap - top);
}

void PlaceResultsView(Parts& parts, const Gaps& gaps, QSize size) {
  const int width = size.width() - 2 * gaps.margin;
  const int bottom = size.height() - StripHeight(parts, gaps) - gaps.gap;
  int top = BarHeight(*parts.smtSearchResultsToolbar) + gaps.gap;
  const auto place = [&](QWidget& control, int height) {
    control.setGeometry(gaps.margin, top, width, height);
    top += height + gaps.gap;
  };
  place(*parts.mfrmSearchResults, parts.mfrmSearchResults->sizeHint().height());
  place(*parts.ulvwDupeGroups, static_cast<int>(size.height() * kShareOfGroups));
  place(*parts.suRemovalToolbar, BarHeight(*parts.suRemovalToolbar));
  place(*parts.ulvwDupeDetails, bottom - top);
}

void FillWithViews(Parts& parts, QSize size) {
  for (QWidget* const view : {parts.pctSearchContainer, parts.pctResultsContainer})
    view->setGeometry(QRect(QPoint(0, 0), size));
  for (ToolBar* const bar : {parts.smtSearchToolbar, parts.smtSearchResultsToolbar})
    bar->setGeometry(0, 0, size.width(), BarHeight(*bar));
}

}  // namespace

// At least what the bars want, as long as the screen has it; a narrower bar shows the rest on
// demand.
QSize DesignSize(const Parts& parts) {
  const Gaps gaps(*parts.client);
  const int width = std::max({kLeastDesignWidth, parts.smtSearchToolbar->sizeHint().width(),
                              parts.smtSearchResultsToolbar->sizeHint().width(),
                              parts.suRemovalToolbar->sizeHint().width() + 2 * gaps.margin});
  const int height = std::max(kLeastDesignHeight, parts.client->fontMetrics().height() * 30);
  const QScreen* const screen = QGuiApplication::primaryScreen();
  if (screen == nullptr) return {width, height};
  constexpr int kFrame = 100;  // of the window: title, menu bar, status bar
  const QSize available = screen->availableSize();
  return {std::min(width, available.width()), std::min(height, available.height() - kFrame)};
}

void DesignLayout(Parts& parts) {
  if (!parts.layout) return;
  const QSize present = parts.client->size();
  const QSize design = DesignSize(parts);
  const QSignalBlocker silence(parts.client);
  parts.client->resize(design);
  FillWithViews(parts, design);
  const Gaps gaps(*parts.client);
  PlaceSearchView(parts, gaps, design);
  PlaceResultsView(parts, gaps, design);
  const int strip = StripHeight(parts, gaps);
  parts.pbProgress->setGeometry(gaps.margin, design.height() - strip,
                                design.width() - 2 * gaps.margin,
                                parts.pbProgress->sizeHint().height());
  parts.layout->SetLayout(*parts.client);
  parts.client->setMinimumSize(design);
  parts.client->resize(present);
}

void RedrawLayout(Parts& parts) {
  if (!parts.layout) return;
  FillWithViews(parts, parts.client->size());
  parts.layout->RedrawLayout();
  // The list of folders grows upwards, so the tree ends where it begins.
  QRect tree = parts.ucBrowseForFolder->geometry();
  tree.setBottom(std::min(
      tree.bottom(), parts.ulstFoldersToSearch->geometry().top() - Gaps(*parts.client).gap - 1));
  parts.ucBrowseForFolder->setGeometry(tree);
}

}  // namespace quillmarsh
