// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <string_view>

#include "Platform/Export.h"

/// Text made safe for the place that it goes to. Bytes that belong to no character stay as they
/// are.
namespace rvf {

/// "&", "<", ">", the double quote and the apostrophe become the five entities of XML; entities
/// that the text has already are escaped again: "&amp;" is "&amp;amp;".
RVF_EXPORT std::string stringByEscapingXMLEntities(std::string_view text);

/// A backslash comes before every "%", "*", "?" and "_", so that a predicate's LIKE takes them
/// literally: "50%_off*" is "50\%\_off\*". A backslash itself is not escaped.
RVF_EXPORT std::string RVF_stringByEscapingPredicateWildcards(std::string_view text);

/// The text on one line: each run of tabs and line breaks becomes one blank, or nothing at the
/// ends. Blanks stay as they are.
RVF_EXPORT std::string RVF_cleanStringRemovingNewlinesAndTabs(std::string_view text);

}  // namespace rvf
