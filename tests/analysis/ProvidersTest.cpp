// The operators and countries behind SIDs and MCC-MNCs: the provider database read to its limits,
// what a missing or malformed source leaves, and the labels the outputs show.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>

#include "analysis/Providers.h"
#include "roaming_list/SysItemIS2000.h"
#include "roaming_list/SysItemMccMnc.h"
#include "roaming_list/SysItemPlmn.h"

namespace Tarn::Analysis {
namespace {

namespace fs = std::filesystem;

// A database shaped like the installed one: a SID claimed by two providers, names in several
// languages, MNCs of two and three digits, values at their limits and past them.
const std::string kProvidersXml = R"(<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE serviceproviders SYSTEM "serviceproviders.2.dtd">
<serviceproviders format="2.0">
<country code="us">
  <provider>
    <name xml:lang="de">Verizon DE</name>
    <name>Verizon Wireless</name>
    <cdma><sid value="4139"/><sid value="22"/></cdma>
    <gsm><network-id mcc="311" mnc="480"/></gsm>
  </provider>
  <provider>
    <name>Shared &amp; Co</name>
    <cdma><sid value="4139"/><sid value="0"/><sid value="32767"/><sid value="32768"/><sid value="x1"/></cdma>
    <gsm><network-id mcc="310" mnc="1"/><network-id mcc="310" mnc="1234"/><network-id mcc="31" mnc="00"/></gsm>
  </provider>
  <provider><name>No Networks</name><cdma/></provider>
  <provider><name>)" + std::string(201, 'n') + R"(</name><cdma><sid value="7"/></cdma></provider>
</country>
<country code="ca">
  <name>Kanada</name>
  <provider>
    <name>Rogers</name>
    <gsm><network-id mcc="302" mnc="720"/><network-id mcc="302" mnc="20"/></gsm>
  </provider>
</country>
<country code="zz">
  <provider><name>Nowhere Mobile</name><gsm><network-id mcc="901" mnc="05"/></gsm></provider>
</country>
</serviceproviders>
)";

const char* const kCountriesJson = R"({"3166-1": [
  {"alpha_2": "US", "name": "United States"},
  {"alpha_2": "CA", "name": "Canada, Dominion of", "common_name": "Canada"}
]})";

std::vector<std::string> Names(const std::vector<Operator>& ops) {
    std::vector<std::string> out;
    for (const auto& op : ops) out.push_back(op.name + "|" + op.countryCode + "|" + op.countryName);
    return out;
}

TEST(ProvidersTest, LooksUpSidsAndMccMncs) {
    std::vector<std::string> warnings;
    const auto dir = ProviderDirectory::Parse(kProvidersXml, kCountriesJson, "providers.xml", warnings);
    // SID 32768 and x1, MNCs 1 and 1234 and MCC 31 are skipped with one warning.
    EXPECT_EQ(warnings, std::vector<std::string>{
                            "providers.xml: 5 SID or MCC/MNC value(s) that are not numbers in range were skipped"});
    EXPECT_EQ(dir.Warnings(), warnings);

    using V = std::vector<std::string>;
    const V shared{"Shared & Co|US|United States"};
    const std::pair<std::vector<Operator>, V> cases[] = {
        {dir.ForSid(4139), V{"Verizon Wireless|US|United States", "Shared & Co|US|United States"}},
        {dir.ForSid(22), V{"Verizon Wireless|US|United States"}},  // the untranslated name wins
        {dir.ForSid(0), shared},
        {dir.ForSid(32767), shared},
        {dir.ForSid(32768), V{}},
        {dir.ForSid(7), V{std::string(200, 'n') + "|US|United States"}},  // names stop at 200 bytes
        {dir.ForSid(4140), V{}},
        {dir.ForMccMnc("311", "480"), V{"Verizon Wireless|US|United States"}},
        {dir.ForMccMnc("302", "720"), V{"Rogers|CA|Canada"}},  // the common name of the country
        {dir.ForMccMnc("302", "20"), V{"Rogers|CA|Canada"}},
        {dir.ForMccMnc("302", "020"), V{"Rogers|CA|Canada"}},  // a two-digit MNC spelt with three
        {dir.ForMccMnc("901", "005"), V{"Nowhere Mobile|ZZ|ZZ"}},  // and the other way; no ISO name
        {dir.ForMccMnc("901", "06"), V{}},
        {dir.ForMccMnc("310", "1"), V{}},
        {dir.ForMccMnc("3a2", "20"), V{}},
        {dir.ForMccMnc("302", "FF"), V{}},
    };
    for (size_t i = 0; i < std::size(cases); ++i) EXPECT_EQ(Names(cases[i].first), cases[i].second) << "case " << i;
}

TEST(ProvidersTest, MissingMalformedOrOversizedSourcesLeaveNamesOut) {
    std::vector<std::string> warnings;
    // A database of 8 MiB is read whole; one byte more is not handed to the parser.
    const std::string padded = kProvidersXml + std::string((8u << 20) - kProvidersXml.size(), ' ');
    EXPECT_FALSE(ProviderDirectory::Parse(padded, "", "big.xml", warnings).Empty());
    for (const auto& w : warnings) EXPECT_EQ(w.find("not a provider database"), std::string::npos) << w;
    EXPECT_TRUE(ProviderDirectory::Parse(padded + ' ', "", "big.xml", warnings).Empty());
    EXPECT_EQ(warnings.back(), "big.xml: too large for a provider database; operator names are left out");
    for (const char* xml : {"this is not < xml", "<serviceproviders><country code=\"us\"><provider>",
                            "<?xml version=\"1.0\"?><html><body/></html>", ""}) {
        warnings.clear();
        const auto dir = ProviderDirectory::Parse(xml, kCountriesJson, "bad.xml", warnings);
        EXPECT_TRUE(dir.Empty()) << xml;
        ASSERT_EQ(warnings.size(), 1u) << xml;
        EXPECT_EQ(warnings[0].rfind("bad.xml: not a provider database (", 0), 0u) << warnings[0];
    }
    // Without country names (none given, or a list that is not one) the database's own stand in.
    for (const char* json : {"", "[1, 2", "{\"3166-1\": 5}"}) {
        warnings.clear();
        const auto dir = ProviderDirectory::Parse(kProvidersXml, json, "providers.xml", warnings);
        EXPECT_EQ(Names(dir.ForMccMnc("302", "720")), std::vector<std::string>{"Rogers|CA|Kanada"});
        EXPECT_EQ(Names(dir.ForSid(22)), std::vector<std::string>{"Verizon Wireless|US|US"});
        EXPECT_EQ(warnings.size(), *json ? 2u : 1u);  // the skipped values, and the bad country list
    }
    // Files: a missing database is no warning, a missing country list no names.
    const fs::path dir = fs::temp_directory_path() /
                         ("tarn-providers-" + std::to_string(::testing::UnitTest::GetInstance()->random_seed()));
    fs::create_directories(dir);
    std::ofstream(dir / "p.xml") << kProvidersXml;
    warnings.clear();
    EXPECT_TRUE(ProviderDirectory::Load((dir / "absent.xml").string(), "", warnings).Empty());
    EXPECT_TRUE(warnings.empty());
    const auto loaded = ProviderDirectory::Load((dir / "p.xml").string(), (dir / "absent.json").string(), warnings);
    EXPECT_EQ(Names(loaded.ForSid(22)), std::vector<std::string>{"Verizon Wireless|US|US"});
    EXPECT_EQ(warnings.at(0).rfind("p.xml: 5 SID", 0), 0u);
    fs::remove_all(dir);
}

TEST(ProvidersTest, EntitiesAreNeverExpanded) {
    // A nest of entities that would grow to gigabytes if expanded, and an external one that
    // would read a local file.
    std::string xml = "<?xml version=\"1.0\"?>\n<!DOCTYPE serviceproviders [\n"
                      "<!ENTITY a \"aaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaa\">\n";
    for (char c = 'b'; c <= 'k'; ++c) {
        xml += std::string("<!ENTITY ") + c + " \"";
        for (int i = 0; i < 10; ++i) xml += std::string("&") + static_cast<char>(c - 1) + ";";
        xml += "\">\n";
    }
    xml += "<!ENTITY ext SYSTEM \"file://" TARN_EXAMPLES_DIR "/example-is683e.json\">\n]>\n"
           "<serviceproviders><country code=\"us\"><provider><name>X &k; &ext;</name>"
           "<cdma><sid value=\"7\"/></cdma></provider></country></serviceproviders>";
    std::vector<std::string> warnings;
    const auto ops = ProviderDirectory::Parse(xml, kCountriesJson, "hostile.xml", warnings).ForSid(7);
    if (!ops.empty()) EXPECT_LT(ops[0].name.size(), 100u) << ops[0].name;
    else EXPECT_FALSE(warnings.empty());  // refused outright is as good
}

TEST(ProvidersTest, RecordsNameTheirOperators) {
    std::vector<std::string> warnings;
    const auto dir = ProviderDirectory::Parse(kProvidersXml, kCountriesJson, "providers.xml", warnings);
    CSysItemIS2000 is2000;
    is2000.SetSid(4139);
    CSysItemIS2000Mcc mcc1x;
    mcc1x.SetMcc(302);
    mcc1x.SetImsi(20);
    CSysItemMccMnc mccMnc;
    mccMnc.SetSubtype(CSysItemMccMnc::kSid);
    mccMnc.SetMccMnc({3, 1, 1}, {4, 8, 0});
    mccMnc.SetSidNids({22, 4139, 1}, {});  // Verizon twice, then Shared & Co, then nobody
    CSysItemMccMnc bareMcc;
    bareMcc.SetSubtype(CSysItemMccMnc::kMccMncOnly);
    bareMcc.SetMccMnc({3, 0, 2}, {0xF, 0xF, 0xF});
    CSysItemPlmn plmn;
    plmn.SetPlmnType(1);
    plmn.SetPlmn({3, 0, 2}, {7, 2, 0});
    CSysItemPlmn selectMode;  // type 0 names no network
    selectMode.SetPlmn({3, 0, 2}, {7, 2, 0});

    const std::string both = "Verizon Wireless / Shared & Co (United States)";
    const std::pair<const CSysItem*, std::string> cases[] = {
        {&is2000, both}, {&mcc1x, "Rogers (Canada)"}, {&mccMnc, both},
        {&bareMcc, ""},  {&plmn, "Rogers (Canada)"},  {&selectMode, ""},
    };
    for (const auto& [item, label] : cases) EXPECT_EQ(OperatorLabel(OperatorsForRecord(dir, *item)), label);
    EXPECT_EQ(OperatorsForRecord(dir, mccMnc).size(), 2u);
}

TEST(OperatorLabels, GroupByCountryInOrder) {
    const std::vector<Operator> ops = {{"A", "US", "United States"}, {"C", "CA", "Canada"}, {"B", "US", "United States"}};
    EXPECT_EQ(OperatorLabel(ops), "A / B (United States) / C (Canada)");
    EXPECT_EQ(CountryLabel(ops), "United States / Canada");
    EXPECT_EQ(OperatorNames(ops), "A / C / B");
    EXPECT_EQ(OperatorLabel({}), "");
    EXPECT_EQ(OperatorsJson({ops[1]}), nlohmann::json::parse(R"([{"name":"C","country":"CA","countryName":"Canada"}])"));
    EXPECT_EQ(OperatorsJson({}), nlohmann::json::array());
}

}  // namespace
}  // namespace Tarn::Analysis
