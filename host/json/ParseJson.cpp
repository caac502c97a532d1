#include "host/json/ParseJson.h"
#include "host/json/GraphError.h"
#include "host/json/Printable.h"
#include <fmt/format.h>
#include <unordered_set>

namespace fernwick {

namespace {

constexpr size_t kDeepest = 256; // what reads a document may call itself as deep

/// The text of an exception of the parser behind its code.
std::string Reason(const std::exception& error)
{
    const std::string text = error.what();
    const size_t end = text.find("] ");
    return end == std::string::npos ? text : text.substr(end + 2);
}

struct Beginning {
    std::string_view bytes;
    std::string_view text; ///< what begins so
};

using namespace std::string_view_literals;

constexpr Beginning kBeginnings[] = {
    {"\xFF\xFE"sv, "UTF-16 and must be UTF-8"},
    {"\xFE\xFF"sv, "UTF-16 and must be UTF-8"},
    {"\x89PNG"sv, "a picture (PNG)"},
    {"\xFF\xD8\xFF"sv, "a picture (JPEG)"},
    {"v/1\x01"sv, "a picture (EXR)"},
    {"II*\0"sv, "a picture (TIFF)"},
    {"MM\0*"sv, "a picture (TIFF)"},
    {"glTF"sv, "a model (glTF)"},
    {"PK\x03\x04"sv, "an archive (zip)"},
    {"\x1F\x8B"sv, "compressed (gzip)"},
    {"\177ELF"sv, "a program or a library"},
};

/// What a text is instead of JSON, by its first bytes; empty when they tell nothing.
std::string_view OtherKind(std::string_view text)
{
    if (text.find_first_not_of(" \t\r\n") == std::string_view::npos)
        return "empty";
    for (const Beginning& beginning : kBeginnings)
        if (text.starts_with(beginning.bytes))
            return beginning.text;
    const std::string_view start = text.substr(0, 2);
    if (start.size() == 2 && (start[0] == 0) != (start[1] == 0))
        return "UTF-16 and must be UTF-8";
    return text.find('\0') != std::string_view::npos ? "no text: it holds zero bytes" : "";
}

/// Makes a value of what the parser tells one by one. Left to itself the parser looks for each key through all the
/// others of its object.
class Builder final : public Json::json_sax_t {
public:
    Json fRoot;

    bool null() override { return Take(nullptr); }
    bool boolean(bool value) override { return Take(value); }
    bool number_integer(number_integer_t value) override { return Take(value); }
    bool number_unsigned(number_unsigned_t value) override { return Take(value); }
    bool number_float(number_float_t value, const string_t&) override { return Take(value); }
    bool string(string_t& value) override { return Take(std::move(value)); }
    bool binary(binary_t&) override { return false; } // a text has none
    bool start_object(size_t) override { return Open(Json::object()); }
    bool start_array(size_t) override { return Open(Json::array()); }
    bool end_object() override { return Close(); }
    bool end_array() override { return Close(); }
    bool key(string_t& name) override
    {
        if (!fOpen.back().keys.insert(name).second)
            FailTwice(name);
        MembersOf(fOpen.back()).emplace_back(name, nullptr);
        return true;
    }
    bool parse_error(size_t, const std::string& token, const Json::exception& error) override
    {
        constexpr int kOverflow = 406; // as the parser's manual has it
        if (error.id == kOverflow)
            Fail(fOpen.size(),
                fmt::format("expected a number that a float can hold, got {}",
                    token.size() <= kShownBytes ? token : "a long number"));
        throw GraphError(Printable("not JSON: " + Reason(error)));
    }

private:
    /// An array or object that isn't complete; it is the last member of the one before.
    struct Level {
        Json* value;
        std::unordered_set<std::string> keys = {};
    };
    using Members = std::vector<Json::object_t::value_type>;

    std::vector<Level> fOpen;

    /// The members without the search of the class that holds them.
    static Members& MembersOf(const Level& level) { return level.value->get_ref<Json::object_t&>(); }

    Json& Put(Json value)
    {
        if (fOpen.empty())
            return fRoot = std::move(value);
        Json& last = *fOpen.back().value;
        if (last.is_object())
            return MembersOf(fOpen.back()).back().second = std::move(value);
        last.push_back(std::move(value));
        return last.back();
    }

    bool Take(Json value)
    {
        Put(std::move(value));
        return true;
    }

    bool Open(Json value)
    {
        if (fOpen.size() > kDeepest)
            throw GraphError(fmt::format("arrays and objects are nested more than {} deep", kDeepest));
        fOpen.push_back({&Put(std::move(value))});
        return true;
    }

    bool Close()
    {
        fOpen.pop_back();
        return true;
    }

    [[noreturn]] void FailTwice(const std::string& name) const
    {
        Fail(fOpen.size() - 1, fmt::format("the key {} occurs twice in one object", Json(name).dump()));
    }

    /// Names the place of the value that comes next among the members of the first levels.
    [[noreturn]] void Fail(size_t levels, const std::string& text) const
    {
        std::string where;
        for (size_t i = 0; i < levels; ++i)
            if (const Json& value = *fOpen[i].value; value.is_array())
                where += fmt::format("[{}]", i + 1 < fOpen.size() ? value.size() - 1 : value.size());
            else
                where += (where.empty() ? "" : ".") + MembersOf(fOpen[i]).back().first;
        throw GraphError(Printable(fmt::format("{}{}{}", where, where.empty() ? "" : ": ", text)));
    }
};

} // namespace

Json ParseJson(const std::string& text)
{
    if (const std::string_view kind = OtherKind(text); !kind.empty())
        throw GraphError(fmt::format("not JSON: it is {}", kind));
    Builder builder;
    Json::sax_parse(text, &builder);
    return std::move(builder.fRoot);
}

} // namespace fernwick
