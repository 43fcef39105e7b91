// SPDX-License-Identifier: MIT
// One help window, made when it is first asked for. Topics are pages that are part of the program.
#include "ui/Help.h"

#include <QPointer>

#include "frame/Pump.h"
#include "ui/HelpWindow.h"

// In a library the pages are there only once this was called; it works outside of namespaces only.
static void ProvidePages() {
  Q_INIT_RESOURCE(help);
}

namespace quillmarsh {

namespace {

struct Topic {
  int number;
  const char* page;
};

constexpr const char* kContents = "index.html";
constexpr Topic kTopics[] = {
    {help_topic::Contents, kContents},
    {help_topic::Troubleshooting, "troubleshooting.html"},
    {help_topic::Filters, "filters.html"},
};

const char* PageOf(int topic) {
  for (const Topic& row : kTopics) {
    if (row.number == topic) return row.page;
  }
  return kContents;
}

// Goes with the window that it was opened over last.
QPointer<HelpWindow> theHelp;

}  // namespace

void ShowHelpTopic(QWidget* window, int topic) {
  ProvidePages();
  QWidget* const owner = window == nullptr ? nullptr : window->window();
  if (theHelp == nullptr) theHelp = new HelpWindow;
  theHelp->StayWith(owner);
  theHelp->ShowPage(QString::fromLatin1(PageOf(topic)));
  DoEvents();
}

}  // namespace quillmarsh
