#pragma once

#include <initializer_list>
#include <string>
#include <string_view>

/// A piece of a JSON document as the document will show it, put together from its start to its end. Everything that
/// needs memory happens while it grows, and then throws std::bad_alloc; giving it up needs none. (A tree of
/// nlohmann::json needs memory to be freed.)
class JSONText
{
public:
    bool IsEmpty() const { return m_text.empty(); }

    /// False when a string in it is not UTF-8: then there is no document with it.
    bool IsUtf8() const { return m_isUtf8; }

    /// Nothing is left, and the memory is kept.
    void Clear();

    /// Appends text that is JSON already.
    void Append(std::string_view json) { m_text.append(json); }
    void Append(const JSONText &other);

    /// Appends a string as nlohmann::json writes it.
    void AppendString(std::string_view text);

    /// Begins the array that it is to be, if nothing has begun it, and appends an element with `append`, which gets
    /// this object. When that throws, everything is as it was.
    template <typename AppendElement>
    void AddElement(const AppendElement &append)
    {
        const std::size_t size = m_text.size();
        const bool wasUtf8 = m_isUtf8;
        try
        {
            m_text += size == 0 ? '[' : ',';
            if (size == 1)
                m_text.pop_back(); // the first one of an array that was emptied
            append(*this);
        }
        catch (...)
        {
            m_text.resize(size);
            m_isUtf8 = wasUtf8;
            throw;
        }
    }

    /// Empties the array; one that has not begun stays so.
    void ClearArray();

    /// A member of an object; one with an empty value is left out.
    struct Member
    {
        std::string_view key;
        const JSONText &value;
        /// Behind the value: what ends an array.
        std::string_view end = "";
    };

    /// Appends an object; the members are given in the order of their keys.
    void AppendObject(std::initializer_list<Member> members);

    /// The text, which leaves the object empty.
    std::string Take();

private:
    std::string m_text;
    bool m_isUtf8 = true;
};
