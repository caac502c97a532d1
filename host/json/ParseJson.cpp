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
    bool parse_error(size_t, const std::string&, const Json::exception& error) override
    {
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
        std::string where;
        for (auto level = fOpen.begin(); level + 1 != fOpen.end(); ++level)
            if (level->value->is_array())
                where += fmt::format("[{}]", level->value->size() - 1);
            else
                where += (where.empty() ? "" : ".") + MembersOf(*level).back().first;
        throw GraphError(Printable(fmt::format("{}{}the key {} occurs twice in one object", where,
            where.empty() ? "" : ": ", Json(name).dump())));
    }
};

} // namespace

Json ParseJson(const std::string& text)
{
    Builder builder;
    Json::sax_parse(text, &builder);
    return std::move(builder.fRoot);
}

} // namespace fernwick
