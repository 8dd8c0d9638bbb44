// VELL: data-driven hierarchical state machines.
// tools/vell/Report.cpp: the lines, for people and for programs.
#include "tools/vell/Report.h"

#include <vell/TransitionDef.h>

#include "tools/vell/Color.h"
#include "tools/vell/ObservedMachine.h"

#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

#include <iomanip>
#include <ostream>

namespace vell::tool
{
namespace
{

std::string Joined(const std::vector<std::string>& names)
{
    std::string path;
    for (const std::string& name : names)
    {
        path += (path.empty() ? "" : "/") + name;
    }
    return path.empty() ? "-" : path;
}

/// Gives `27,016` for 27016.
std::string Grouped(unsigned int number)
{
    std::string text = std::to_string(number);
    for (std::size_t i = text.size(); i > 3; i -= 3)
    {
        text.insert(i - 3, ",");
    }
    return text;
}

std::string Counted(unsigned int count, const std::string& one)
{
    return std::to_string(count) + " " + one + (count == 1 ? "" : "s");
}

class TextReport : public Report
{
public:
    TextReport(std::ostream& stream, bool newHasColor) : out(stream), hasColor(newHasColor)
    {
    }

    void Entered(std::uint64_t tick, const std::string& state, unsigned int) override
    {
        Line(tick, "entered", Color::Green) << state << '\n';
    }
    void Left(std::uint64_t tick, const std::string& state, unsigned int) override
    {
        Line(tick, "left", Color::Blue) << state << '\n';
    }
    void Fired(std::uint64_t tick, const Firing& firing) override
    {
        (firing.isRefused ? Line(tick, "refused", Color::Yellow) : Line(tick, "fired", Color::Cyan))
            << firing.name << " (" << firing.id << ") of " << firing.state << ", priority "
            << firing.priority << ": " << firing.held << '\n';
    }
    void BlipStarted(std::uint64_t tick, int priority, bool isDisplacing) override
    {
        Line(tick, "blip", Color::Magenta)
            << (isDisplacing ? "displaced" : "started") << ", priority " << priority << '\n';
    }
    void BlipEnded(std::uint64_t tick) override
    {
        Line(tick, "blip", Color::Magenta) << "ended\n";
    }
    void Message(std::uint64_t tick, const std::string& name) override
    {
        Line(tick, "message", Color::Plain) << name << '\n';
    }
    void Set(std::uint64_t tick, const std::string& name, const std::string& value) override
    {
        Line(tick, "set", Color::Plain) << name << " = " << value << '\n';
    }
    void Failed(std::uint64_t tick, const std::string& what) override
    {
        Line(tick, "failed", Color::Red) << what << '\n';
    }
    void Explained(std::uint64_t tick, const std::string& state,
                   const std::vector<TransitionReading>& readings) override
    {
        Line(tick, "explain", Color::Dim)
            << state << (readings.empty() ? ": no transitions" : ":") << '\n';
        for (const TransitionReading& reading : readings)
        {
            Line(tick, "explain", Color::Dim)
                << "    " << NameOf(*reading.transition) << " (" << reading.transition->GetID()
                << "), priority " << reading.transition->priority << ": " << VerdictText(reading);
            if (!reading.conditions.empty())
            {
                out << ": " << ConditionsText(reading.conditions);
            }
            out << '\n';
        }
    }
    void Stack(std::uint64_t tick, const StackReading& stack) override
    {
        Line(tick, "stack", Color::Bold) << Joined(stack.isBlip ? stack.blip : stack.main);
        if (stack.isBlip)
        {
            out << "  (blip over " << Joined(stack.main) << ")";
        }
        out << '\n';
    }
    void End(std::uint64_t tick, const Summary& summary) override
    {
        Line(tick, "arena", Color::Plain) << Grouped(summary.arenaUsed) << " of "
                                          << Grouped(summary.arenaSize) << " bytes used\n";
        if (summary.held + summary.failed + summary.otherErrors == 0)
        {
            return;
        }
        std::string text = Counted(summary.held, "expectation") + " held";
        text += summary.failed == 0 ? "" : ", " + std::to_string(summary.failed) + " failed";
        text += summary.otherErrors == 0 ? "" : ", " + Counted(summary.otherErrors, "other error");
        const bool isWell = summary.failed + summary.otherErrors == 0;
        out << Painted(hasColor, isWell ? Color::Green : Color::Red, text) << '\n';
    }
    bool IsLost() const override
    {
        return !out;
    }

private:
    std::ostream& Line(std::uint64_t tick, const std::string& what, Color color)
    {
        const std::string blanks(what.size() < 9 ? 9 - what.size() : 0, ' ');
        return out << std::right << std::setw(6) << tick << "  " << Painted(hasColor, color, what)
                   << blanks;
    }

    std::ostream& out;
    bool hasColor;
};

/// One object, which the destructor writes on a line of its own.
class JsonLine
{
public:
    JsonLine(std::ostream& stream, std::uint64_t tick, const char* event)
        : out(stream), writer(buffer)
    {
        writer.StartObject();
        writer.Key("tick");
        writer.Uint64(tick);
        Text("event", event);
    }
    ~JsonLine()
    {
        writer.EndObject();
        out << buffer.GetString() << '\n';
    }
    JsonLine(const JsonLine&) = delete;
    JsonLine& operator=(const JsonLine&) = delete;

    JsonLine& Text(const char* key, const std::string& text)
    {
        writer.Key(key);
        String(text);
        return *this;
    }
    JsonLine& Number(const char* key, std::int64_t number)
    {
        writer.Key(key);
        writer.Int64(number);
        return *this;
    }
    JsonLine& Flag(const char* key, bool flag)
    {
        writer.Key(key);
        writer.Bool(flag);
        return *this;
    }
    JsonLine& Texts(const char* key, const std::vector<std::string>& texts)
    {
        writer.Key(key);
        writer.StartArray();
        for (const std::string& text : texts)
        {
            String(text);
        }
        writer.EndArray();
        return *this;
    }
    JsonLine& Readings(const char* key, const std::vector<TransitionReading>& readings)
    {
        writer.Key(key);
        writer.StartArray();
        for (const TransitionReading& reading : readings)
        {
            writer.StartObject();
            Text("transition", NameOf(*reading.transition));
            Number("id", reading.transition->GetID());
            Number("priority", reading.transition->priority);
            Text("verdict", VerdictText(reading));
            writer.Key("conditions");
            writer.StartArray();
            for (const ConditionReading& condition : reading.conditions)
            {
                writer.StartObject();
                Text("condition", condition.text).Text("saw", condition.saw);
                Flag("holds", condition.holds);
                writer.EndObject();
            }
            writer.EndArray();
            writer.EndObject();
        }
        writer.EndArray();
        return *this;
    }

private:
    void String(const std::string& text)
    {
        writer.String(text.data(), static_cast<rapidjson::SizeType>(text.size()));
    }

    std::ostream& out;
    rapidjson::StringBuffer buffer;
    rapidjson::Writer<rapidjson::StringBuffer> writer;
};

class JsonReport : public Report
{
public:
    explicit JsonReport(std::ostream& stream) : out(stream)
    {
    }

    void Entered(std::uint64_t tick, const std::string& state, unsigned int id) override
    {
        JsonLine(out, tick, "entered").Text("state", state).Number("id", id);
    }
    void Left(std::uint64_t tick, const std::string& state, unsigned int id) override
    {
        JsonLine(out, tick, "left").Text("state", state).Number("id", id);
    }
    void Fired(std::uint64_t tick, const Firing& firing) override
    {
        JsonLine(out, tick, firing.isRefused ? "refused" : "fired")
            .Text("transition", firing.name)
            .Number("id", firing.id)
            .Text("state", firing.state)
            .Number("target", firing.targetId)
            .Number("priority", firing.priority)
            .Text("held", firing.held);
    }
    void BlipStarted(std::uint64_t tick, int priority, bool isDisplacing) override
    {
        JsonLine(out, tick, "blip")
            .Text("what", isDisplacing ? "displaced" : "started")
            .Number("priority", priority);
    }
    void BlipEnded(std::uint64_t tick) override
    {
        JsonLine(out, tick, "blip").Text("what", "ended");
    }
    void Message(std::uint64_t tick, const std::string& name) override
    {
        JsonLine(out, tick, "message").Text("name", name);
    }
    void Set(std::uint64_t tick, const std::string& name, const std::string& value) override
    {
        JsonLine(out, tick, "set").Text("name", name).Text("value", value);
    }
    void Failed(std::uint64_t tick, const std::string& what) override
    {
        JsonLine(out, tick, "failed").Text("what", what);
    }
    void Explained(std::uint64_t tick, const std::string& state,
                   const std::vector<TransitionReading>& readings) override
    {
        JsonLine(out, tick, "explain").Text("state", state).Readings("transitions", readings);
    }
    void Stack(std::uint64_t tick, const StackReading& stack) override
    {
        JsonLine line(out, tick, "stack");
        line.Texts("main", stack.main).Flag("isBlip", stack.isBlip);
        if (stack.isBlip)
        {
            line.Texts("blip", stack.blip);
        }
    }
    void Wrong(std::uint64_t tick, const Failure& failure) override
    {
        JsonLine line(out, tick, failure.isExpectation ? "expectation" : "error");
        if (failure.isExpectation)
        {
            line.Flag("held", false);
        }
        line.Text("what", failure.what);
        if (failure.line != 0)
        {
            line.Text("file", failure.file).Number("line", failure.line);
        }
    }
    void End(std::uint64_t tick, const Summary& summary) override
    {
        JsonLine(out, tick, "end")
            .Number("held", summary.held)
            .Number("failed", summary.failed)
            .Number("otherErrors", summary.otherErrors)
            .Number("arenaUsed", summary.arenaUsed)
            .Number("arenaSize", summary.arenaSize);
    }
    bool IsLost() const override
    {
        return !out;
    }

private:
    std::ostream& out;
};

} // namespace

void Report::Entered(std::uint64_t, const std::string&, unsigned int)
{
}
void Report::Left(std::uint64_t, const std::string&, unsigned int)
{
}
void Report::Fired(std::uint64_t, const Firing&)
{
}
void Report::BlipStarted(std::uint64_t, int, bool)
{
}
void Report::BlipEnded(std::uint64_t)
{
}
void Report::Message(std::uint64_t, const std::string&)
{
}
void Report::Set(std::uint64_t, const std::string&, const std::string&)
{
}
void Report::Failed(std::uint64_t, const std::string&)
{
}
void Report::Explained(std::uint64_t, const std::string&, const std::vector<TransitionReading>&)
{
}
void Report::Stack(std::uint64_t, const StackReading&)
{
}
void Report::Wrong(std::uint64_t, const Failure&)
{
}
void Report::End(std::uint64_t, const Summary&)
{
}
bool Report::IsLost() const
{
    return false;
}

std::unique_ptr<Report> MakeTextReport(std::ostream& out, bool hasColor)
{
    return std::make_unique<TextReport>(out, hasColor);
}

std::unique_ptr<Report> MakeJsonReport(std::ostream& out)
{
    return std::make_unique<JsonReport>(out);
}

} // namespace vell::tool
