// VELL: data-driven hierarchical state machines.
// document/NumberText.h: the text form of vectors and ranges.
#pragma once

namespace vell
{

/// Reads the first `count` numbers of a text such as "0.5,-1,2" into `numbers`; `count` is at most
/// 4. Pieces are separated by commas; empty pieces do not count, a piece that is not a number is 0,
/// and further pieces are ignored. Returns 1, or 0 with `numbers` untouched when `text` is null or
/// has 128 characters or more, or when there are too few pieces.
int ReadNumbers(const char* text, double* numbers, int count);

/// The same, narrowed to float.
int ReadNumbers(const char* text, float* numbers, int count);

/// Cuts the fraction off. What an int cannot hold ends at the nearest int; no number at all is 0.
int TruncateToInt(double number);

} // namespace vell
