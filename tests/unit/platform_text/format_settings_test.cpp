#include "platform/text/format_settings.h"

#include <gtest/gtest.h>

#include <cstdlib>

using namespace vyn;

namespace {

// Sets a variable of the environment and puts the former value back.
class ScopedVariable {
  public:
    ScopedVariable(const char* name, const char* value) : name_(name) {
        if (const char* before = std::getenv(name)) {
            had_ = true;
            before_ = before;
        }
        value ? setenv(name, value, 1) : unsetenv(name);
    }
    ~ScopedVariable() { had_ ? setenv(name_, before_.c_str(), 1) : unsetenv(name_); }
    ScopedVariable(const ScopedVariable&) = delete;
    ScopedVariable& operator=(const ScopedVariable&) = delete;

  private:
    const char* name_;
    bool had_ = false;
    std::string before_;
};

}  // namespace

TEST(FormatSettings, TheInvariantOnesAreFixed) {
    const TFormatSettings& settings = InvariantFormatSettings();
    EXPECT_EQ('.', settings.DecimalSeparator);
    EXPECT_EQ(',', settings.ThousandSeparator);
    EXPECT_EQ("mm/dd/yyyy", settings.ShortDateFormat);
    EXPECT_EQ("hh:nn:ss", settings.LongTimeFormat);
    EXPECT_EQ("September", settings.LongMonthNames[8]);
    EXPECT_EQ("Sunday", settings.LongDayNames[0]);
    EXPECT_EQ(50, settings.TwoDigitYearCenturyWindow);
}

TEST(FormatSettings, SpanishAsInSpain) {
    const TFormatSettings settings = FormatSettingsOfLocale("es_ES.UTF-8");
    EXPECT_EQ(',', settings.DecimalSeparator);
    EXPECT_EQ('.', settings.ThousandSeparator);
    EXPECT_EQ("dd/mm/yyyy", settings.ShortDateFormat);
    EXPECT_EQ("h:nn:ss", settings.LongTimeFormat);
    EXPECT_EQ("mi\xE9rcoles", settings.LongDayNames[3]);
    EXPECT_EQ("enero", settings.LongMonthNames[0]);
    EXPECT_EQ("\x80", settings.CurrencyString);
    EXPECT_EQ(3, settings.CurrencyFormat);
    EXPECT_EQ(8, settings.NegCurrFormat);
}

TEST(FormatSettings, SpanishAsInMexicoWritesAPoint) {
    const TFormatSettings settings = FormatSettingsOfLocale("es_MX");
    EXPECT_EQ('.', settings.DecimalSeparator);
    EXPECT_EQ("$", settings.CurrencyString);
    EXPECT_EQ("enero", settings.LongMonthNames[0]);
}

TEST(FormatSettings, Catalan) {
    const TFormatSettings settings = FormatSettingsOfLocale("ca_ES@valencia");
    EXPECT_EQ(',', settings.DecimalSeparator);
    EXPECT_EQ("mar\xE7", settings.LongMonthNames[2]);
    EXPECT_EQ("dimecres", settings.LongDayNames[3]);
    EXPECT_EQ("\x80", settings.CurrencyString);
}

TEST(FormatSettings, EnglishOfBothShores) {
    EXPECT_EQ("m/d/yyyy", FormatSettingsOfLocale("en_US.UTF-8").ShortDateFormat);
    EXPECT_EQ("h:nn:ss AMPM", FormatSettingsOfLocale("en_US.UTF-8").LongTimeFormat);
    EXPECT_EQ("dd/mm/yyyy", FormatSettingsOfLocale("en_GB").ShortDateFormat);
    EXPECT_EQ("\xA3", FormatSettingsOfLocale("en_GB").CurrencyString);
}

TEST(FormatSettings, EachKindGoesByItsOwnLocale) {
    const TFormatSettings settings = FormatSettingsOfLocales("C", "ca_ES", "en_GB");
    EXPECT_EQ('.', settings.DecimalSeparator);
    EXPECT_EQ("gener", settings.LongMonthNames[0]);
    EXPECT_EQ("\xA3", settings.CurrencyString);
}

TEST(FormatSettings, ALanguageThatTheSystemDoesNotKnowGivesTheInvariantOnes) {
    const TFormatSettings settings = FormatSettingsOfLocale("xx_XX.UTF-8");
    EXPECT_EQ(InvariantFormatSettings().ShortDateFormat, settings.ShortDateFormat);
    EXPECT_EQ('.', settings.DecimalSeparator);
}

TEST(FormatSettings, TheEnvironmentIsReadInTheUsualOrder) {
    ScopedVariable all("LC_ALL", nullptr);
    ScopedVariable numbers("LC_NUMERIC", "es_ES");
    ScopedVariable dates("LC_TIME", "");
    ScopedVariable language("LANG", "ca_ES");
    EXPECT_EQ(',', FormatSettingsOfEnvironment().DecimalSeparator);
    EXPECT_EQ("gener", FormatSettingsOfEnvironment().LongMonthNames[0]);
    ScopedVariable over("LC_ALL", "C");
    EXPECT_EQ('.', FormatSettingsOfEnvironment().DecimalSeparator);
}

TEST(FormatSettings, AMaskOfTheSystemsNotation) {
    EXPECT_EQ("dd/mm/yyyy", MaskOfSystemDateFormat("%d/%m/%Y"));
    EXPECT_EQ("d.m.yy", MaskOfSystemDateFormat("%-d.%-m.%y"));
    EXPECT_EQ("hh:nn:ss", MaskOfSystemDateFormat("%T"));
    EXPECT_EQ("d 'de' mmmm 'de' yyyy", MaskOfSystemDateFormat("%e de %B de %Y"));
    EXPECT_EQ("d \"d'\"mmmm", MaskOfSystemDateFormat("%e d'%B"));
    EXPECT_EQ("yyyy'h'hh%", MaskOfSystemDateFormat("%Yh%H%%"));
    EXPECT_EQ("", MaskOfSystemDateFormat("%"));
    EXPECT_EQ("hh:nn ", MaskOfSystemDateFormat("%R %Z"));
}

TEST(FormatSettings, TheProcessHasOneSet) { EXPECT_EQ(&FormatSettings(), &FormatSettings()); }
