// yxtools intl: every regional setting the library holds, and where it came from.
#include <yxtools/yxtools.h>

#include <cstdlib>
#include <map>
#include <string>

#include "cli.h"
#if !defined(_WIN32)
#include "platform/posix/localecodepage.h"
#endif

namespace {

// One member: its key of section "intl", and the locale category a POSIX locale gives it under.
struct Member {
    const char* key;
    const char* category;
};

// In the order the update operations read them.
const Member kMembers[] = {
    {"sLanguage", nullptr},       {"sCountry", nullptr},        {"iCountry", nullptr},
    {"iDigits", "LC_NUMERIC"},    {"sThousand", "LC_NUMERIC"},  {"sDecimal", "LC_NUMERIC"},
    {"iLzero", "LC_NUMERIC"},     {"sList", "LC_NUMERIC"},      {"iMeasure", "LC_MEASUREMENT"},
    {"sCurrency", "LC_MONETARY"}, {"iCurrency", "LC_MONETARY"}, {"iCurrDigits", "LC_MONETARY"},
    {"iNegCurr", "LC_MONETARY"},  {"sTime", "LC_TIME"},         {"iTime", "LC_TIME"},
    {"iTLZero", "LC_TIME"},       {"s1159", "LC_TIME"},         {"s2359", "LC_TIME"},
    {"iDate", "LC_TIME"},         {"sDate", "LC_TIME"},         {"sShortDate", "LC_TIME"},
    {"sLongDate", "LC_TIME"},
};

// Reads the members, and asks the profile service itself where a key's value comes from.
class Probe : public YXIntl {
public:
    explicit Probe(const YXIntl& intl) : YXIntl(intl) {}

    std::string Value(const std::string& key) const
    {
        const std::map<std::string, std::string> values = {{"sLanguage", m_sLanguage},
                                                           {"sCountry", m_sCountry},
                                                           {"iCountry", N(m_iCountry)},
                                                           {"iDate", N(m_iDate)},
                                                           {"iTime", N(m_iTime)},
                                                           {"iTLZero", N(m_iTLZero)},
                                                           {"iCurrency", N(m_iCurrency)},
                                                           {"iCurrDigits", N(m_iCurrDigits)},
                                                           {"iNegCurr", N(m_iNegCurr)},
                                                           {"iLzero", N(m_iLzero)},
                                                           {"iDigits", N(m_iDigits)},
                                                           {"iMeasure", N(m_iMeasure)},
                                                           {"s1159", m_s1159},
                                                           {"s2359", m_s2359},
                                                           {"sCurrency", m_sCurrency},
                                                           {"sThousand", m_sThousand},
                                                           {"sDecimal", m_sDecimal},
                                                           {"sDate", m_sDate},
                                                           {"sTime", m_sTime},
                                                           {"sList", m_sList},
                                                           {"sShortDate", m_sShortDate},
                                                           {"sLongDate", m_sLongDate}};
        return values.at(key);
    }

    // True when the profile service has the key (rather than answering with the default).
    bool Has(const char* key) const
    {
        _SS<char> value;
        GetProfileStringA("intl", key, "\x01", value);
        return value != "\x01";
    }

    std::string Source(const Member& member) const
    {
        if (!Has(member.key)) {
            return "default";
        }
#if defined(_WIN32)
        return "registry";
#else
        // With no locale data in reach, only the prefix's win.ini can still answer.
        const char* all = std::getenv("LC_ALL");
        const std::string saved = all != nullptr ? all : "";
        setenv("LC_ALL", "xx_XX", 1);
        const bool inFile = Has(member.key);
        all != nullptr ? setenv("LC_ALL", saved.c_str(), 1) : unsetenv("LC_ALL");
        if (inFile) {
            return "win.ini";
        }
        return std::string("locale ") + yx::platform::LocaleVariable(member.category);
#endif
    }

private:
    static std::string N(long value)
    {
        return std::to_string(value);
    }
};

} // namespace

namespace cli {

void AddIntlCommand(CLI::App& app, Context& context)
{
    CLI::App* command = app.add_subcommand("intl", "every regional setting and where it came from");
    context.SetAction(command, [&context] {
        const YXIntl* intl = YXIntl_Get();
        if (intl == nullptr) {
            context.Line("no regional settings");
            return 1;
        }
        intl->InitInternationalValues();
        const Probe probe(*intl);
        Json members = Json::array();
        for (const Member& member : kMembers) {
            const std::string value = probe.Value(member.key);
            const std::string source = probe.Source(member);
            Json entry = Json::object();
            entry["key"] = member.key;
            SetText(entry, "value", value);
            entry["source"] = source;
            members.push_back(std::move(entry));
            context.Line("%-12s %-24s %s", member.key, ("\"" + value + "\"").c_str(), source.c_str());
        }
        context.result["members"] = std::move(members);
        return 0;
    });
}

} // namespace cli

namespace {
const cli::Registration registration("intl", cli::AddIntlCommand);
}
