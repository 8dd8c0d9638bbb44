// VELL: data-driven hierarchical state machines.
// tests/tools/GraphLayoutTest.cpp: that nothing in a picture is drawn over something else.
#include "tests/support/SourceDir.h"
#include "tests/tools/CommandRun.h"
#include "tools/vell/CommandLine.h"

#include <gtest/gtest.h>
#include <rapidjson/document.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <sstream>
#include <string>
#include <vector>

namespace vell::test
{
namespace
{

struct Point
{
    double x = 0.0;
    double y = 0.0;
};

struct Box
{
    std::string name;
    double left = 0.0;
    double bottom = 0.0;
    double right = 0.0;
    double top = 0.0;

    bool Contains(const Point& point) const
    {
        return point.x > left && point.x < right && point.y > bottom && point.y < top;
    }
    bool Contains(const Box& other) const
    {
        return other.left >= left && other.right <= right && other.bottom >= bottom &&
               other.top <= top;
    }
    bool Overlaps(const Box& other) const
    {
        return left < other.right && other.left < right && bottom < other.top && other.bottom < top;
    }
};

struct Edge
{
    std::string name;
    std::string from;
    std::string to;
    std::vector<Point> path; ///< of a Bezier curve
};

/// Where Graphviz puts everything. Lengths are in points.
struct Layout
{
    Box picture;
    std::vector<Box> nodes;
    std::vector<Box> levels;
    std::vector<Box> titles; ///< of frames that have one
    std::vector<Edge> edges;
};

std::vector<double> Numbers(std::string text)
{
    std::replace_if(
        text.begin(), text.end(),
        [](char c)
        {
            return c != '.' && c != '-' && (c < '0' || c > '9');
        },
        ' ');
    std::istringstream in(text);
    std::vector<double> numbers;
    for (double number = 0.0; in >> number;)
    {
        numbers.push_back(number);
    }
    return numbers;
}

constexpr double kPointsPerInch = 72.0;

Box BoxAround(const std::string& name, const rapidjson::Value& object, const char* position,
              const char* width, const char* height)
{
    const std::vector<double> center = Numbers(object[position].GetString());
    const double halfWidth = std::stod(object[width].GetString()) * kPointsPerInch / 2;
    const double halfHeight = std::stod(object[height].GetString()) * kPointsPerInch / 2;
    return {name, center[0] - halfWidth, center[1] - halfHeight, center[0] + halfWidth,
            center[1] + halfHeight};
}

Box BoundingBox(const std::string& name, const rapidjson::Value& object)
{
    const std::vector<double> corners = Numbers(object["bb"].GetString());
    return {name, corners[0], corners[1], corners[2], corners[3]};
}

/// The path, without the end of the arrow, which precedes it.
std::vector<Point> PathOf(const std::string& position)
{
    std::vector<double> numbers = Numbers(position);
    const std::size_t arrow = position.rfind("e,", 0) == 0 ? 2 : 0;
    std::vector<Point> path;
    for (std::size_t i = arrow; i + 1 < numbers.size(); i += 2)
    {
        path.push_back({numbers[i], numbers[i + 1]});
    }
    return path;
}

Layout ReadLayout(const std::string& json)
{
    rapidjson::Document document;
    document.Parse(json.c_str());
    EXPECT_FALSE(document.HasParseError());
    Layout layout;
    layout.picture = BoundingBox("picture", document);
    std::map<int, std::string> names;
    for (const rapidjson::Value& object : document["objects"].GetArray())
    {
        const std::string name = object["name"].GetString();
        names[object["_gvid"].GetInt()] = name;
        if (!object.HasMember("bb"))
        {
            layout.nodes.push_back(BoxAround(name, object, "pos", "width", "height"));
            continue;
        }
        layout.levels.push_back(BoundingBox(name, object));
        if (!object.HasMember("lp"))
        {
            continue;
        }
        layout.titles.push_back(BoxAround("title of " + name, object, "lp", "lwidth", "lheight"));
    }
    for (const rapidjson::Value& object : document["edges"].GetArray())
    {
        const std::string from = names[object["tail"].GetInt()];
        const std::string to = names[object["head"].GetInt()];
        layout.edges.push_back({from + " -> " + to, from, to, PathOf(object["pos"].GetString())});
    }
    return layout;
}

/// The point of the piece of the curve that begins at `start`, at `t` from 0 to 1.
Point PointAt(const std::vector<Point>& path, std::size_t start, double t)
{
    const double s = 1.0 - t;
    const double weights[] = {s * s * s, 3 * s * s * t, 3 * s * t * t, t * t * t};
    Point point;
    for (std::size_t i = 0; i < 4; ++i)
    {
        point.x += weights[i] * path[start + i].x;
        point.y += weights[i] * path[start + i].y;
    }
    return point;
}

bool RunsThrough(const Edge& edge, Box box)
{
    constexpr double kLine = 1.5; // half of a line and of a border may touch
    constexpr int kSteps = 50;
    box.left += kLine;
    box.bottom += kLine;
    box.right -= kLine;
    box.top -= kLine;
    for (std::size_t start = 0; start + 3 < edge.path.size(); start += 3)
    {
        for (int step = 0; step <= kSteps; ++step)
        {
            if (box.Contains(PointAt(edge.path, start, static_cast<double>(step) / kSteps)))
            {
                return true;
            }
        }
    }
    return false;
}

/// Everything that is drawn over something else or out of the picture, one line for each.
std::string Collisions(const Layout& layout)
{
    std::vector<Box> boxes = layout.nodes;
    boxes.insert(boxes.end(), layout.titles.begin(), layout.titles.end());
    std::string found;
    for (std::size_t i = 0; i < boxes.size(); ++i)
    {
        found += layout.picture.Contains(boxes[i]) ? "" : boxes[i].name + " leaves the picture\n";
        for (std::size_t j = i + 1; j < boxes.size(); ++j)
        {
            found += boxes[i].Overlaps(boxes[j])
                         ? boxes[i].name + " is over " + boxes[j].name + "\n"
                         : "";
        }
        for (const Edge& edge : layout.edges)
        {
            const bool isEnd = boxes[i].name == edge.from || boxes[i].name == edge.to;
            found += !isEnd && RunsThrough(edge, boxes[i])
                         ? edge.name + " runs through " + boxes[i].name + "\n"
                         : "";
        }
    }
    for (std::size_t i = 0; i < layout.levels.size(); ++i)
    {
        for (std::size_t j = i + 1; j < layout.levels.size(); ++j)
        {
            const Box& one = layout.levels[i];
            const Box& other = layout.levels[j];
            const bool isNested = one.Contains(other) || other.Contains(one);
            found +=
                one.Overlaps(other) && !isNested ? one.name + " crosses " + other.name + "\n" : "";
        }
    }
    return found;
}

bool HasGraphviz()
{
    return std::system("command -v dot >/dev/null") == 0; // NOLINT: no text of a user in it
}

Layout Draw(const std::string& sample, const std::vector<std::string>& options)
{
    const Folder folder;
    std::vector<std::string> words{"graph",
                                   std::string(SourceDir()) + "/samples/" + sample + ".json", "-o",
                                   folder.PathOf("a.dot")};
    words.insert(words.end(), options.begin(), options.end());
    EXPECT_EQ(CallVell(words).code, tool::ExitWell);
    const std::string command =
        "dot -Tjson0 '" + folder.PathOf("a.dot") + "' -o '" + folder.PathOf("a.json") + "'";
    EXPECT_EQ(std::system(command.c_str()), 0); // NOLINT: names of this test's own files
    return ReadLayout(folder.Read("a.json"));
}

TEST(GraphLayout, DrawsNothingOverSomethingElse)
{
    if (!HasGraphviz())
    {
        GTEST_SKIP() << "Graphviz is not installed";
    }
    struct Case
    {
        std::string sample;
        std::vector<std::string> options;
        std::size_t nodes; ///< how many the picture has at least
    };
    const std::vector<Case> cases{{"locomotion", {}, 7},
                                  {"character", {}, 20},
                                  {"guard", {}, 42},
                                  {"guard", {"--collapse"}, 11},
                                  {"guard", {"--depth", "2"}, 30},
                                  {"guard", {"--level", "Combat"}, 17},
                                  {"guard", {"--level", "Attack"}, 9},
                                  {"guard", {"--level", "Peace"}, 15},
                                  {"locomotion", {"--direction", "TB"}, 7},
                                  {"guard", {"--direction", "RL"}, 42}};
    for (const Case& one : cases)
    {
        const Layout layout = Draw(one.sample, one.options);

        EXPECT_GE(layout.nodes.size(), one.nodes);
        EXPECT_EQ(Collisions(layout), "") << one.sample << testing::PrintToString(one.options);
    }
}

TEST(GraphLayout, DrawsEveryName)
{
    if (!HasGraphviz())
    {
        GTEST_SKIP() << "Graphviz is not installed";
    }
    for (const char* name : {"", " ", "\n", "&amp;", "&", "<b>", "</TABLE>", "x\\", "\\N", "%s",
                             "\"", "-->", "\x01", "\xC3\xA9\xF0\x9F\x98\x80", "\xEF\xBF\xBE"})
    {
        DocumentBuilder builder;
        builder.Start(10)
            .Parameter(MessageParameter("m", ""))
            .Level(name, 10, 13, {100})
            .Node(Generic(name, 13, {101}, 10))
            .Node(Transition(name, 100, 10, 12, {MessageCondition("m", name)}))
            .Node(Transition(name, 101, 13, 13));
        const Folder folder;
        const std::string path = folder.Write("a.json", builder.Text());

        const Outcome outcome = CallVell({"graph", path, "--format", "svg", "--title", name});

        EXPECT_EQ(outcome.errors, "") << name;
        EXPECT_EQ(outcome.code, tool::ExitWell) << name;
        EXPECT_NE(outcome.out.find("</svg>"), std::string::npos) << name;
    }
}

TEST(GraphLayout, FindsWhatIsDrawnOverSomethingElse)
{
    Layout layout;
    layout.picture = {"picture", 0, 0, 100, 100};
    layout.nodes = {{"a", 0, 0, 20, 20}, {"b", 10, 10, 30, 30}, {"c", 90, 40, 110, 60}};
    layout.levels = {{"L", 0, 0, 50, 50}, {"M", 40, 40, 90, 90}, {"N", 10, 10, 20, 20}};
    layout.titles = {{"title of L", 40, 40, 50, 50}};
    layout.edges = {{"a -> c", "a", "c", {{0, 0}, {40, 40}, {60, 60}, {100, 100}}}};

    EXPECT_EQ(Collisions(layout), "a is over b\n"
                                  "a -> c runs through b\n"
                                  "c leaves the picture\n"
                                  "a -> c runs through title of L\n"
                                  "L crosses M\n");
}

} // namespace
} // namespace vell::test
