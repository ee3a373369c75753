#include "platform/text/format_settings.h"

#include <langinfo.h>
#include <locale.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>

#include "platform/text/compare.h"
#include "platform/text/windows1252.h"

namespace vyn {

namespace format_settings_detail {

// "ca_ES.UTF-8@valencia" is language ca, territory ES.
struct LocaleName {
    std::string language;
    std::string territory;
};

LocaleName SplitLocaleName(std::string_view name) {
    name = name.substr(0, name.find_first_of(".@"));
    const std::size_t cut = name.find_first_of("_-");
    LocaleName result{LowerCase(name.substr(0, cut)), {}};
    if (cut != std::string_view::npos) result.territory = UpperCase(name.substr(cut + 1));
    return result;
}

bool IsOneOf(std::string_view territory, std::initializer_list<std::string_view> list) {
    return std::find(list.begin(), list.end(), territory) != list.end();
}

// -- Spanish and Catalan

void SetPeninsularNumbers(TFormatSettings& settings) {
    settings.DecimalSeparator = ',';
    settings.ThousandSeparator = '.';
    settings.ListSeparator = ';';
}

void SetEuroAmounts(TFormatSettings& settings) {
    settings.CurrencyString = "€"_w;
    settings.CurrencyFormat = 3;
    settings.NegCurrFormat = 8;
}

void SetPeninsularDates(TFormatSettings& settings) {
    settings.ShortDateFormat = "dd/mm/yyyy";
    settings.ShortTimeFormat = "h:nn";
    settings.LongTimeFormat = "h:nn:ss";
    settings.TimeAMString.clear();
    settings.TimePMString.clear();
}

bool UsesPointInSpanish(std::string_view territory) {
    return IsOneOf(territory, {"MX", "US", "DO", "GT", "HN", "NI", "PA", "PE", "PR", "SV"});
}

void SetSpanishDates(TFormatSettings& settings) {
    SetPeninsularDates(settings);
    settings.LongDateFormat = "dddd, d' de 'mmmm' de 'yyyy";
    settings.ShortMonthNames = {"ene", "feb", "mar", "abr", "may", "jun", "jul", "ago", "sep", "oct", "nov", "dic"};
    settings.LongMonthNames = {"enero", "febrero", "marzo",      "abril",   "mayo",      "junio",
                               "julio", "agosto",  "septiembre", "octubre", "noviembre", "diciembre"};
    settings.ShortDayNames = {"dom", "lun", "mar", "mié"_w, "jue", "vie", "sáb"_w};
    settings.LongDayNames = {"domingo", "lunes", "martes", "miércoles"_w, "jueves", "viernes", "sábado"_w};
}

void SetCatalanDates(TFormatSettings& settings) {
    SetPeninsularDates(settings);
    settings.LongDateFormat = "dddd, d mmmm' de 'yyyy";
    settings.ShortMonthNames = {"gen", "feb", "març"_w, "abr", "maig", "juny", "jul", "ag", "set", "oct", "nov", "des"};
    settings.LongMonthNames = {"gener",  "febrer", "març"_w,   "abril",   "maig",     "juny",
                               "juliol", "agost",  "setembre", "octubre", "novembre", "desembre"};
    settings.ShortDayNames = {"dg.", "dl.", "dt.", "dc.", "dj.", "dv.", "ds."};
    settings.LongDayNames = {"diumenge", "dilluns", "dimarts", "dimecres", "dijous", "divendres", "dissabte"};
}

// -- English: the names are those of the invariant settings

void SetEnglishDates(TFormatSettings& settings, std::string_view territory) {
    if (territory.empty() || territory == "US") {
        settings.ShortDateFormat = "m/d/yyyy";
        settings.LongDateFormat = "dddd, mmmm d, yyyy";
        settings.ShortTimeFormat = "h:nn AMPM";
        settings.LongTimeFormat = "h:nn:ss AMPM";
    } else {
        settings.ShortDateFormat = territory == "CA" ? "yyyy/mm/dd" : "dd/mm/yyyy";
        settings.LongDateFormat = "dddd, d mmmm yyyy";
    }
    if (territory == "CA") settings.DateSeparator = '-';
}

void SetEnglishAmounts(TFormatSettings& settings, std::string_view territory) {
    settings.CurrencyString = territory == "GB" ? "£"_w : territory == "IE" ? "€"_w : AnsiString("$");
    settings.NegCurrFormat = territory.empty() || territory == "US" ? 0 : 1;
}

// -- Any other language, as the system describes it

struct FreeLocale {
    void operator()(locale_t locale) const { freelocale(locale); }
};
using SystemLocale = std::unique_ptr<std::remove_pointer_t<locale_t>, FreeLocale>;

SystemLocale OpenSystemLocale(std::string_view name) {
    return SystemLocale(newlocale(LC_ALL_MASK, std::string(name).c_str(), nullptr));
}

AnsiString SystemText(locale_t locale, nl_item item) {
    const char* text = nl_langinfo_l(item, locale);
    const bool utf8 = std::strcmp(nl_langinfo_l(CODESET, locale), "UTF-8") == 0;
    // Narrow blanks between thousands are no letters of the code page: the no-break blank stands in.
    if (utf8 && (std::strcmp(text, "\u202F") == 0 || std::strcmp(text, "\u2009") == 0)) return "\xA0";
    return utf8 ? Utf8ToAnsiLossy(text) : AnsiString(text);
}

char SystemCharacter(locale_t locale, nl_item item, char otherwise) {
    const AnsiString text = SystemText(locale, item);
    return text.empty() ? otherwise : text.front();
}

void SetSystemNumbers(TFormatSettings& settings, locale_t locale) {
    settings.DecimalSeparator = SystemCharacter(locale, RADIXCHAR, settings.DecimalSeparator);
    settings.ThousandSeparator = SystemCharacter(locale, THOUSEP, settings.ThousandSeparator);
    if (settings.ThousandSeparator == settings.DecimalSeparator)
        settings.ThousandSeparator = settings.DecimalSeparator == ',' ? '.' : ',';
    settings.ListSeparator = settings.DecimalSeparator == ',' ? ';' : ',';
}

// The first sign of a mask between two of its letters becomes the separator, which the mask then names by `general`.
void TakeSeparator(AnsiString& mask, char general, char& separator) {
    const std::size_t at = mask.find_first_of("/.-:");
    if (at == AnsiString::npos) return;
    separator = mask[at];
    std::replace(mask.begin(), mask.end(), separator, general);
}

void SetSystemDates(TFormatSettings& settings, locale_t locale) {
    for (int i = 0; i < 12; ++i) {
        settings.ShortMonthNames[i] = SystemText(locale, ABMON_1 + i);
        settings.LongMonthNames[i] = SystemText(locale, MON_1 + i);
    }
    for (int i = 0; i < 7; ++i) {
        settings.ShortDayNames[i] = SystemText(locale, ABDAY_1 + i);
        settings.LongDayNames[i] = SystemText(locale, DAY_1 + i);
    }
    settings.TimeAMString = SystemText(locale, AM_STR);
    settings.TimePMString = SystemText(locale, PM_STR);
    settings.ShortDateFormat = MaskOfSystemDateFormat(SystemText(locale, D_FMT));
    settings.LongTimeFormat = MaskOfSystemDateFormat(SystemText(locale, T_FMT));
    TakeSeparator(settings.ShortDateFormat, '/', settings.DateSeparator);
    TakeSeparator(settings.LongTimeFormat, ':', settings.TimeSeparator);
    settings.ShortTimeFormat = settings.LongTimeFormat;
    const std::size_t seconds = settings.ShortTimeFormat.find(":ss");
    if (seconds != AnsiString::npos) settings.ShortTimeFormat.erase(seconds, 3);
}

void SetSystemAmounts(TFormatSettings& settings, locale_t locale) {
    // The first character says where the sign stands: - before, + after, . in the place of the separator.
    const AnsiString sign = SystemText(locale, CRNCYSTR);
    if (sign.size() < 2) return;
    settings.CurrencyString = sign.substr(1);
    settings.CurrencyFormat = sign.front() == '+' ? 3 : 0;
    settings.NegCurrFormat = sign.front() == '+' ? 8 : 1;
}

bool IsInvariant(std::string_view name) {
    return name.empty() || name == "C" || name == "POSIX" || name.substr(0, 2) == "C.";
}

void SetNumbers(TFormatSettings& settings, std::string_view name) {
    const auto [language, territory] = SplitLocaleName(name);
    if (IsInvariant(name) || language == "en") return;
    if (language == "es" && UsesPointInSpanish(territory)) return;
    if (language == "es" || language == "ca")
        SetPeninsularNumbers(settings);
    else if (const SystemLocale locale = OpenSystemLocale(name))
        SetSystemNumbers(settings, locale.get());
}

void SetDates(TFormatSettings& settings, std::string_view name) {
    const auto [language, territory] = SplitLocaleName(name);
    if (IsInvariant(name)) return;
    if (language == "en")
        SetEnglishDates(settings, territory);
    else if (language == "es")
        SetSpanishDates(settings);
    else if (language == "ca")
        SetCatalanDates(settings);
    else if (const SystemLocale locale = OpenSystemLocale(name))
        SetSystemDates(settings, locale.get());
}

void SetAmounts(TFormatSettings& settings, std::string_view name) {
    const auto [language, territory] = SplitLocaleName(name);
    if (IsInvariant(name)) return;
    if (language == "en")
        SetEnglishAmounts(settings, territory);
    else if (language == "ca" || (language == "es" && IsOneOf(territory, {"", "ES"})))
        SetEuroAmounts(settings);
    else if (language == "es" && UsesPointInSpanish(territory) && territory != "PE")
        SetEnglishAmounts(settings, territory == "US" ? territory : std::string_view("MX"));
    else if (const SystemLocale locale = OpenSystemLocale(name))
        SetSystemAmounts(settings, locale.get());
}

AnsiString EnvironmentText(const char* name) {
    const char* text = std::getenv(name);
    return text ? text : "";
}

AnsiString EnvironmentLocale(const char* category) {
    for (const char* name : {"LC_ALL", category, "LANG"}) {
        AnsiString text = EnvironmentText(name);
        if (!text.empty()) return text;
    }
    return "C";
}

// A mask is being built; letters that are no pattern are collected and come out in quotes.
class MaskBuilder {
  public:
    void Pattern(std::string_view pattern) {
        Flush();
        mask_ += pattern;
    }

    void Literal(char c) {
        const bool letter =
            (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || static_cast<unsigned char>(c) >= 0x80 || c == '\'';
        if (!letter) Flush();
        (letter ? literal_ : mask_) += c;
    }

    AnsiString Take() {
        Flush();
        return std::move(mask_);
    }

  private:
    void Flush() {
        const char quote = literal_.find('\'') == AnsiString::npos ? '\'' : '"';
        if (!literal_.empty()) mask_ += quote + literal_ + quote;
        literal_.clear();
    }

    AnsiString mask_;
    AnsiString literal_;
};

std::string_view PatternOfConversion(char conversion) {
    switch (conversion) {
        case 'd':
            return "dd";
        case 'e':
            return "d";
        case 'm':
            return "mm";
        case 'b':
        case 'h':
            return "mmm";
        case 'B':
            return "mmmm";
        case 'y':
            return "yy";
        case 'Y':
        case 'G':
            return "yyyy";
        case 'a':
            return "ddd";
        case 'A':
            return "dddd";
        case 'H':
            return "hh";
        case 'k':
        case 'I':
            return "hh";
        case 'l':
            return "h";
        case 'M':
            return "nn";
        case 'S':
            return "ss";
        case 'p':
        case 'P':
            return "AMPM";
        case 'T':
            return "hh:nn:ss";
        case 'R':
            return "hh:nn";
        case 'r':
            return "hh:nn:ss AMPM";
        case 'D':
            return "mm/dd/yy";
        case 'F':
            return "yyyy-mm-dd";
        default:
            return "";  // time zones and week numbers have no pattern and are left out
    }
}

}  // namespace format_settings_detail

AnsiString MaskOfSystemDateFormat(std::string_view format) {
    format_settings_detail::MaskBuilder builder;
    for (std::size_t i = 0; i < format.size(); ++i) {
        if (format[i] != '%') {
            builder.Literal(format[i]);
            continue;
        }
        ++i;
        bool unpadded = false;  // flags and the alternative-digits marks come before the conversion's letter
        for (; i < format.size() && std::strchr("-_0^#EO", format[i]); ++i) unpadded = unpadded || format[i] == '-';
        if (i == format.size()) break;
        if (format[i] == '%') {
            builder.Literal('%');
            continue;
        }
        std::string_view pattern = format_settings_detail::PatternOfConversion(format[i]);
        if (unpadded && pattern.size() == 2) pattern.remove_prefix(1);
        builder.Pattern(pattern);
    }
    return builder.Take();
}

TFormatSettings FormatSettingsOfLocales(std::string_view numbers, std::string_view dates, std::string_view amounts) {
    TFormatSettings settings;
    format_settings_detail::SetNumbers(settings, numbers);
    format_settings_detail::SetDates(settings, dates);
    format_settings_detail::SetAmounts(settings, amounts);
    return settings;
}

TFormatSettings FormatSettingsOfLocale(std::string_view name) { return FormatSettingsOfLocales(name, name, name); }

TFormatSettings FormatSettingsOfEnvironment() {
    using format_settings_detail::EnvironmentLocale;
    return FormatSettingsOfLocales(EnvironmentLocale("LC_NUMERIC"), EnvironmentLocale("LC_TIME"),
                                   EnvironmentLocale("LC_MONETARY"));
}

TFormatSettings& FormatSettings() {
    static TFormatSettings settings = FormatSettingsOfEnvironment();
    return settings;
}

const TFormatSettings& InvariantFormatSettings() {
    static const TFormatSettings settings;
    return settings;
}

}  // namespace vyn
