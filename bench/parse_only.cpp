// VELL: data-driven hierarchical state machines.
// bench/parse_only.cpp: a program that parses a document and does nothing with it.
#include <rapidjson/document.h>

#include <cstdio>
#include <string>
#include <unistd.h>

int main(int argc, char** argv)
{
    std::FILE* file = argc == 2 ? std::fopen(argv[1], "rb") : nullptr;
    if (file == nullptr)
    {
        return 1;
    }
    std::string text(std::size_t{1} << 20, '\0');
    text.resize(std::fread(&text[0], 1, text.size(), file));
    std::fclose(file);
    rapidjson::Document document;
    document.Parse(text.c_str());
    const char mark[] = "parsed\n";
    const bool written = write(STDERR_FILENO, mark, sizeof(mark) - 1) > 0;
    return written && !document.HasParseError() ? 0 : 1;
}
