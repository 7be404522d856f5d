#pragma once

#include <libxml/tree.h>
#include <map>
#include <nlohmann/json.hpp>
#include <string>

inline const xmlChar *AsXml(const char *text)
{
    return reinterpret_cast<const xmlChar *>(text);
}

/// What a row is made of, and the name of its group.
struct Knob
{
    const char *name;
    const char *value;
    const char *prompt;
    const char *description;
    std::string group;
};

// One class per kind of report: Add for every knob, then Finish.

class UiXml
{
public:
    void Add(const Knob &knob);
    std::string Finish();

private:
    std::map<std::string, xmlNodePtr> m_groups;
};

class LogXml
{
public:
    void Add(const Knob &knob);
    std::string Finish();

private:
    std::map<std::string, xmlNodePtr> m_groups;
};

class LogHtml
{
public:
    void Add(const Knob &knob);
    std::string Finish();

private:
    std::map<std::string, std::string> m_groups;
};

class LogHtmlXml
{
public:
    void Add(const Knob &knob);
    std::string Finish();

private:
    LogHtml m_html;
    LogXml m_xml;
};

class LogJson
{
public:
    void Add(const Knob &knob);
    std::string Finish();

private:
    std::map<std::string, nlohmann::json> m_groups;
};

class UiJson
{
public:
    void Add(const Knob &knob);
    std::string Finish();

private:
    std::map<std::string, nlohmann::json> m_groups;
};
