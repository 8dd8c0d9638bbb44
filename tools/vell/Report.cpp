// VELL: data-driven hierarchical state machines.
// tools/vell/Report.cpp: the lines, for people and for programs.
#include "tools/vell/Report.h"

#include <vell/TransitionDef.h>

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

class TextReport : public Report
{
public:
    explicit TextReport(std::ostream& stream) : out(stream)
    {
    }

    void Entered(std::uint64_t tick, const std::string& state, unsigned int) override
    {
        Line(tick, "entered") << state << '\n';
    }
    void Left(std::uint64_t tick, const std::string& state, unsigned int) override
    {
        Line(tick, "left") << state << '\n';
    }
    void Fired(std::uint64_t tick, const Firing& firing) override
    {
        Line(tick, firing.isRefused ? "refused" : "fired")
            << firing.name << " (" << firing.id << ") of " << firing.state << ", priority "
            << firing.priority << ": " << firing.held << '\n';
    }
    void BlipStarted(std::uint64_t tick, int priority, bool isDisplacing) override
    {
        Line(tick, "blip") << (isDisplacing ? "displaced" : "started") << ", priority " << priority
                           << '\n';
    }
    void BlipEnded(std::uint64_t tick) override
    {
        Line(tick, "blip") << "ended\n";
    }
    void Message(std::uint64_t tick, const std::string& name) override
    {
        Line(tick, "message") << name << '\n';
    }
    void Set(std::uint64_t tick, const std::string& name, const std::string& value) override
    {
        Line(tick, "set") << name << " = " << value << '\n';
    }
    void Failed(std::uint64_t tick, const std::string& what) override
    {
        Line(tick, "failed") << what << '\n';
    }
    void Explained(std::uint64_t tick, const std::string& state,
                   const std::vector<TransitionReading>& readings) override
    {
        Line(tick, "explain") << state << (readings.empty() ? ": no transitions" : ":") << '\n';
        for (const TransitionReading& reading : readings)
        {
            Line(tick, "explain") << "    " << NameOf(*reading.transition) << " ("
                                  << reading.transition->GetID() << "), priority "
                                  << reading.transition->priority << ": " << VerdictText(reading);
            if (!reading.conditions.empty())
            {
                out << ": " << ConditionsText(reading.conditions);
            }
            out << '\n';
        }
    }
    void Stack(std::uint64_t tick, const StackReading& stack) override
    {
        Line(tick, "stack") << Joined(stack.isBlip ? stack.blip : stack.main);
        if (stack.isBlip)
        {
            out << "  (blip over " << Joined(stack.main) << ")";
        }
        out << '\n';
    }

private:
    std::ostream& Line(std::uint64_t tick, const char* what)
    {
        return out << std::right << std::setw(6) << tick << "  " << std::left << std::setw(9)
                   << what;
    }

    std::ostream& out;
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

std::unique_ptr<Report> MakeTextReport(std::ostream& out)
{
    return std::make_unique<TextReport>(out);
}

std::unique_ptr<Report> MakeJsonReport(std::ostream& out)
{
    return std::make_unique<JsonReport>(out);
}

} // namespace vell::tool
