// VELL: data-driven hierarchical state machines.
// foundation/FunctionName.h: names of functions and files as log lines show them.
#pragma once

#include <cstddef>
#include <string_view>

namespace vell
{

/// Cuts what the compiler calls a function down to its qualified name, without result, parameters
/// and template arguments: "int vell::HSM::PushState(unsigned int)" gives "vell::HSM::PushState".
constexpr std::string_view QualifiedName(std::string_view pretty)
{
    // clang's words for an unnamed namespace are part of the name, blank and parentheses included.
    constexpr std::string_view kUnnamed = "(anonymous namespace)";
    std::size_t end = pretty.find('(');
    while (end != std::string_view::npos && pretty.substr(end, kUnnamed.size()) == kUnnamed)
    {
        end = pretty.find('(', end + kUnnamed.size());
    }
    const std::string_view head = pretty.substr(0, end);
    std::size_t begin = head.size();
    while (begin > 0 && head[begin - 1] != ' ' && head[begin - 1] != '*' && head[begin - 1] != '&')
    {
        begin -= head[begin - 1] == ')' ? kUnnamed.size() : 1;
    }
    return head.substr(begin);
}

/// Gives the name of a source file without its folders.
constexpr std::string_view BaseName(std::string_view path)
{
    const std::size_t slash = path.find_last_of("/\\");
    return slash == std::string_view::npos ? path : path.substr(slash + 1);
}

/// Counts the decimal digits of a number above 0.
constexpr std::size_t CountDigits(int number)
{
    std::size_t count = 0;
    for (; number > 0; number /= 10)
    {
        ++count;
    }
    return count;
}

/// The text "FILE : LINE", put together by the compiler.
template <std::size_t Size>
struct SourcePlace
{
    constexpr SourcePlace(std::string_view file, int line) : text()
    {
        std::size_t end = Size;
        for (; line > 0; line /= 10)
        {
            text[--end] = static_cast<char>('0' + line % 10);
        }
        text[--end] = ' ';
        text[--end] = ':';
        text[--end] = ' ';
        while (end > 0)
        {
            --end;
            text[end] = file[end];
        }
    }
    constexpr std::string_view View() const
    {
        return std::string_view(text, Size);
    }

    char text[Size];
};

} // namespace vell

/// What the compiler calls the function that it is in, for `QualifiedName`.
#if defined(_MSC_VER) && !defined(__clang__)
#define VELL_FUNCTION __FUNCTION__
#else
#define VELL_FUNCTION __PRETTY_FUNCTION__
#endif

/// The name of the source file that it is in.
#define VELL_FILE                                                                                  \
    (                                                                                              \
        []                                                                                         \
        {                                                                                          \
            constexpr std::string_view kName = ::vell::BaseName(__FILE__);                         \
            return kName;                                                                          \
        }())

/// The name of the source file that it is in, " : " and the line.
#define VELL_PLACE                                                                                 \
    (                                                                                              \
        []                                                                                         \
        {                                                                                          \
            static constexpr ::vell::SourcePlace<::vell::BaseName(__FILE__).size() + 3 +           \
                                                 ::vell::CountDigits(__LINE__)>                    \
                kPlace(::vell::BaseName(__FILE__), __LINE__);                                      \
            return kPlace.View();                                                                  \
        }())
