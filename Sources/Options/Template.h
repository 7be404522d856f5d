#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

/// Templates as their writers see them: assignments with their places, and what is wrong with the text. Nothing here
/// reads or writes anything.

enum class TemplateKind
{
    /// Assignments with a ";" between two of them.
    Text,
    /// A knob file: an assignment a line, sections, comments.
    KnobFile
};

/// Where something stands; both count from 1, columns in characters. Line 0: nowhere in a file.
struct TemplatePlace
{
    std::size_t line = 0;
    std::size_t column = 0;
};

enum class Severity
{
    /// The template is not programmed.
    Error,
    Warning,
    Note
};

/// The word for it: "error", "warning", "note".
std::string_view SeverityName(Severity severity);

/// What is to be said about a template.
struct Finding
{
    Severity severity = Severity::Error;
    TemplatePlace place;
    /// The option in question, or empty.
    std::string option;
    /// A word for programs, such as "unknown-option".
    std::string_view code;
    /// A sentence without its full stop.
    std::string message;
};

/// An assignment without the blanks around its parts, which the tool does not count. Both are parts of the text.
struct TemplateAssignment
{
    std::string_view name;
    std::string_view value;
    TemplatePlace place;
};

/// What a template holds.
struct TemplateContent
{
    std::vector<TemplateAssignment> assignments;
    /// Only the first of all line breaks that became parts of names is among them.
    std::vector<Finding> findings;
    bool hasLineBreakInName = false;
};

/// Reads a template whose lines end in "\n". `text` must outlive what is returned. Linear in its length.
TemplateContent ReadTemplate(std::string_view text, TemplateKind kind);

/// Reads assignments from a command line, NAME=VALUE each, which must outlive what is returned.
TemplateContent ReadAssignments(const std::vector<std::string> &arguments);

/// One assignment of a template to be made. Both are parts of texts that live longer.
struct WrittenAssignment
{
    std::string_view name;
    std::string_view value;
};

/// The text of a template with these assignments, a line each. In a text template the ";" stands at the start of a
/// line: behind a value it would make the line break a part of the next name.
std::string WriteTemplate(const std::vector<WrittenAssignment> &assignments, TemplateKind kind);
