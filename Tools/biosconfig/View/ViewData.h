#pragma once

#include "ViewPage.h"

#include <string>

/// The options of a page for its script, a JSON object in UTF-8: `columns` (titles), `pages` (paths), `kinds` (words),
/// `options` (in the order of the page's rows), `places` (theirs in the order of the dump), `choiceLists`. Prompts and
/// help texts, the longest by far, stand in the rows alone. What is not known, is false or is empty is not there:
///   name; page, kind  places in the lists above
///   value       the text of the first column's value; null where that has no such option
///   others      [text or null, [places of columns], whether it is known to differ] for each text other than that
///   default     text; changed, differs, odd (empty or no choice), redacted  true
///   choices     place in choiceLists, lists of texts
///   line        what a template assigns, where that is another text than value; null: nothing can be written
std::string MakeViewData(const ViewContent &content);
