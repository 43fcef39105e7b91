// SPDX-License-Identifier: MIT
// Tool tips of texts that come from outside: a folder may be called "<b>".
#pragma once

#include <QString>
#include <QTextDocument>

namespace quillmarsh {

// Shows the text as it stands, whatever it looks like.
[[nodiscard]] inline QString PlainToolTip(const QString& text) {
  if (!Qt::mightBeRichText(text)) return text;
  return QStringLiteral("<p style=\"white-space:pre-wrap\">") + text.toHtmlEscaped() +
         QStringLiteral("</p>");
}

}  // namespace quillmarsh
