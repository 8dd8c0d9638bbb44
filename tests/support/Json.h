// VELL: data-driven hierarchical state machines.
// tests/support/Json.h: JSON text, built piece by piece.
#pragma once

#include <durm/DURMBaseLib.h>

#include <cstdio>
#include <initializer_list>
#include <string>
#include <utility>
#include <vector>

namespace vell::test
{

/// One JSON value as text.
class Json
{
public:
    Json(bool value) : text(value ? "true" : "false")
    {
    }
    Json(int value) : text(std::to_string(value))
    {
    }
    Json(unsigned int value) : text(std::to_string(value))
    {
    }
    Json(double value)
    {
        char digits[40];
        std::snprintf(digits, sizeof(digits), "%.17g", value);
        text = digits;
        if (text.find_first_of(".eE") == std::string::npos)
        {
            text += ".0";
        }
    }
    Json(const char* value) : text(Quote(value))
    {
    }
    Json(const std::string& value) : text(Quote(value))
    {
    }

    static Json Null()
    {
        return Raw("null");
    }
    /// Takes `jsonText` as it is, well-formed or not.
    static Json Raw(std::string jsonText)
    {
        Json json(false);
        json.text = std::move(jsonText);
        return json;
    }
    template <class T>
    static Json Array(const std::vector<T>& elements)
    {
        std::string list;
        for (const T& element : elements)
        {
            list += (list.empty() ? "" : ",") + Json(element).text;
        }
        return Raw("[" + list + "]");
    }
    static Json Array(std::initializer_list<Json> elements)
    {
        return Array(std::vector<Json>(elements));
    }

    const std::string& Text() const
    {
        return text;
    }

private:
    static std::string Quote(const std::string& value)
    {
        std::string quoted = "\"";
        for (const char c : value)
        {
            char escaped[8];
            if (c == '"' || c == '\\')
            {
                quoted += '\\';
                quoted += c;
            }
            else if (static_cast<unsigned char>(c) < 0x20)
            {
                std::snprintf(escaped, sizeof(escaped), "\\u%04x", c);
                quoted += escaped;
            }
            else
            {
                quoted += c;
            }
        }
        return quoted + "\"";
    }

    std::string text;
};

/// A JSON object whose members keep the order in which they were first set. Members go by their
/// number; the two that have none go by their text.
class JsonObject
{
public:
    JsonObject& Set(DURMBaseLib::__JSONTYPES__ member, const Json& value)
    {
        return Set(DURMBaseLib::GetJsonName(member), value);
    }
    JsonObject& Set(const std::string& member, const Json& value)
    {
        for (auto& entry : members)
        {
            if (entry.first == member)
            {
                entry.second = value.Text();
                return *this;
            }
        }
        return Add(member, value);
    }
    /// Adds the member also when there is one of this name.
    JsonObject& Add(const std::string& member, const Json& value)
    {
        members.emplace_back(member, value.Text());
        return *this;
    }
    JsonObject& Remove(DURMBaseLib::__JSONTYPES__ member)
    {
        const std::string name = DURMBaseLib::GetJsonName(member);
        for (std::size_t i = members.size(); i-- > 0;)
        {
            if (members[i].first == name)
            {
                members.erase(members.begin() + static_cast<std::ptrdiff_t>(i));
            }
        }
        return *this;
    }

    bool Has(DURMBaseLib::__JSONTYPES__ member) const
    {
        for (const auto& entry : members)
        {
            if (entry.first == DURMBaseLib::GetJsonName(member))
            {
                return true;
            }
        }
        return false;
    }

    std::string Text() const
    {
        std::string list;
        for (const auto& entry : members)
        {
            list += (list.empty() ? "" : ",") + Json(entry.first).Text() + ":" + entry.second;
        }
        return "{" + list + "}";
    }
    operator Json() const
    {
        return Json::Raw(Text());
    }

private:
    std::vector<std::pair<std::string, std::string>> members;
};

} // namespace vell::test
