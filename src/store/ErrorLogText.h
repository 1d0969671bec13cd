#pragma once

#include "store/ErrorLogBlock.h"

#include <string>
#include <string_view>
#include <vector>

/// The error log read back. It is a text file that people may have edited and a crash may have cut off, so nothing in
/// it is a fault: what can be read is read, the rest stays as it is.

/// The log cut into its blocks. A piece begins with a start line, together with the line break and blank lines before
/// it, or behind an end line; put together again the pieces are the log, byte for byte.
/// @param log  lines that CR LF separates; the views point into it
std::vector<std::string_view> splitErrorLog(std::string_view log);

/// Whether there is nothing but blanks and line breaks in it.
bool isBlank(std::string_view text);

/// Whether the piece holds anything that a report could tell: a labelled value or a dump.
bool isReportable(std::string_view piece);

/// The values behind the labels of a piece, wherever in a line a label stands; of several in one line the leftmost
/// counts, of several lines with one label the last. What is missing is empty.
///
/// A dump ends at the next line with a label. Its lines are joined without a separator and taken apart at the blanks;
/// each part is a byte in hexadecimal digits. Parts of more than two digits are bytes whose blanks were lost, and count
/// two digits at a time from the left; what are no such digits is left out. An error dump that is no Base64 gives its
/// bytes as the identity.
ErrorLogBlock readErrorLogBlock(std::string_view piece);
