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
// languages, MNCs of two and three digits, and values a careless edit leaves behind.
const char* const kProvidersXml = R"(<?xml version="1.0" encoding="utf-8"?>
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
    <cdma><sid value="4139"/><sid value="99999"/><sid value="x1"/></cdma>
  </provider>
  <provider><name>No Networks</name><cdma/></provider>
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

class ProvidersTest : public ::testing::Test {
protected:
    void SetUp() override {
        dir_ = fs::temp_directory_path() /
               ("tarn-providers-" + std::to_string(::testing::UnitTest::GetInstance()->random_seed()) +
                "-" + ::testing::UnitTest::GetInstance()->current_test_info()->name());
        fs::create_directories(dir_);
        Write("providers.xml", kProvidersXml);
        Write("countries.json", kCountriesJson);
    }
    void TearDown() override { fs::remove_all(dir_); }
    std::string Write(const std::string& name, const std::string& text) {
        std::ofstream(dir_ / name, std::ios::binary) << text;
        return (dir_ / name).string();
    }
    std::string Path(const std::string& name) const { return (dir_ / name).string(); }
    ProviderDirectory LoadGood(std::vector<std::string>& warnings) {
        return ProviderDirectory::Load(Path("providers.xml"), Path("countries.json"), warnings);
    }

    fs::path dir_;
};

std::vector<std::string> Names(const std::vector<Operator>& ops) {
    std::vector<std::string> out;
    for (const auto& op : ops) out.push_back(op.name + "|" + op.countryCode + "|" + op.countryName);
    return out;
}

TEST_F(ProvidersTest, LooksUpSidsAndMccMncs) {
    std::vector<std::string> warnings;
    const ProviderDirectory dir = LoadGood(warnings);
    ASSERT_FALSE(dir.Empty());
    // The two bad SIDs of "Shared & Co" are skipped with one warning, and nothing else fails.
    ASSERT_EQ(warnings.size(), 1u);
    EXPECT_NE(warnings[0].find("2 SID or MCC/MNC value(s)"), std::string::npos) << warnings[0];
    EXPECT_EQ(dir.Warnings(), warnings);

    using V = std::vector<std::string>;
    struct Case {
        const char* what;
        std::vector<Operator> got;
        V want;
    } cases[] = {
        {"SID claimed twice", dir.ForSid(4139),
         V{"Verizon Wireless|US|United States", "Shared & Co|US|United States"}},
        {"untranslated name wins", dir.ForSid(22), V{"Verizon Wireless|US|United States"}},
        {"unknown SID", dir.ForSid(4140), V{}},
        {"three-digit MNC", dir.ForMccMnc("311", "480"), V{"Verizon Wireless|US|United States"}},
        {"common name of the country", dir.ForMccMnc("302", "720"), V{"Rogers|CA|Canada"}},
        {"two-digit MNC as written", dir.ForMccMnc("302", "20"), V{"Rogers|CA|Canada"}},
        {"two-digit MNC spelt with three", dir.ForMccMnc("302", "020"), V{"Rogers|CA|Canada"}},
        {"three-digit spelling finds two", dir.ForMccMnc("901", "005"), V{"Nowhere Mobile|ZZ|ZZ"}},
        {"other MNC", dir.ForMccMnc("901", "06"), V{}},
        {"country unknown to ISO list", dir.ForMccMnc("901", "05"), V{"Nowhere Mobile|ZZ|ZZ"}},
        {"not digits", dir.ForMccMnc("3a2", "20"), V{}},
        {"MNC wildcard", dir.ForMccMnc("302", "FF"), V{}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        EXPECT_EQ(Names(c.got), c.want);
    }
}

TEST_F(ProvidersTest, MissingAndMalformedFilesGiveAnEmptyDirectory) {
    struct Case {
        const char* what;
        const char* xml;  // nullptr: the file does not exist
        size_t warnings;
    } cases[] = {
        {"missing file", nullptr, 0},
        {"not XML", "this is not < xml", 1},
        {"truncated", "<serviceproviders><country code=\"us\"><provider>", 1},
        {"another document", "<?xml version=\"1.0\"?><html><body/></html>", 1},
        {"empty", "", 1},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        const std::string path = c.xml ? Write("bad.xml", c.xml) : Path("absent.xml");
        std::vector<std::string> warnings;
        const auto dir = ProviderDirectory::Load(path, Path("countries.json"), warnings);
        EXPECT_TRUE(dir.Empty());
        EXPECT_TRUE(dir.ForSid(4139).empty());
        ASSERT_EQ(warnings.size(), c.warnings);
        if (c.warnings) {
            EXPECT_NE(warnings[0].find("bad.xml"), std::string::npos) << warnings[0];
        }
        fs::remove(Path("bad.xml"));
    }
}

TEST_F(ProvidersTest, CountryNamesFallBackToTheDatabaseWhenTheIsoListIsMissingOrBad) {
    for (const char* json : {static_cast<const char*>(nullptr), "[1, 2", "{\"3166-1\": 5}"}) {
        SCOPED_TRACE(json ? json : "missing");
        const std::string countries = json ? Write("c.json", json) : Path("absent.json");
        std::vector<std::string> warnings;
        const auto dir = ProviderDirectory::Load(Path("providers.xml"), countries, warnings);
        EXPECT_EQ(Names(dir.ForMccMnc("302", "720")), std::vector<std::string>{"Rogers|CA|Kanada"});
        EXPECT_EQ(Names(dir.ForSid(22)), std::vector<std::string>{"Verizon Wireless|US|US"});
        EXPECT_EQ(warnings.size(), json ? 2u : 1u);  // the bad SIDs, and the bad country list
    }
}

TEST_F(ProvidersTest, EntitiesAreNeverExpanded) {
    // A nest of entities that would grow to gigabytes if expanded, and an external one that
    // would read a local file.
    std::string xml = "<?xml version=\"1.0\"?>\n<!DOCTYPE serviceproviders [\n"
                      "<!ENTITY a \"aaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaa\">\n";
    for (char c = 'b'; c <= 'k'; ++c) {
        xml += std::string("<!ENTITY ") + c + " \"";
        for (int i = 0; i < 10; ++i) xml += std::string("&") + static_cast<char>(c - 1) + ";";
        xml += "\">\n";
    }
    xml += "<!ENTITY ext SYSTEM \"file://" + Path("providers.xml") + "\">\n]>\n"
           "<serviceproviders><country code=\"us\"><provider><name>X &k; &ext;</name>"
           "<cdma><sid value=\"7\"/></cdma></provider></country></serviceproviders>";
    std::vector<std::string> warnings;
    const auto dir = ProviderDirectory::Parse(xml, kCountriesJson, "hostile.xml", warnings);
    const auto ops = dir.ForSid(7);
    if (!ops.empty()) {
        EXPECT_LT(ops[0].name.size(), 100u);
        EXPECT_EQ(ops[0].name.find("Verizon"), std::string::npos);
    } else {
        EXPECT_FALSE(warnings.empty());  // refused outright is as good
    }
}

TEST_F(ProvidersTest, RecordsNameTheirOperators) {
    std::vector<std::string> warnings;
    const ProviderDirectory dir = LoadGood(warnings);

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
    struct Case {
        const char* what;
        const CSysItem& item;
        std::string label;
        size_t count;
    } cases[] = {
        {"IS-2000 SID", is2000, both, 2},
        {"1x-MCC", mcc1x, "Rogers (Canada)", 1},
        {"MCC-MNC with SIDs", mccMnc, both, 2},
        {"MCC-MNC without an MNC", bareMcc, "", 0},
        {"PLMN", plmn, "Rogers (Canada)", 1},
        {"PLMN select mode", selectMode, "", 0},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        const auto ops = OperatorsForRecord(dir, c.item);
        EXPECT_EQ(ops.size(), c.count);
        EXPECT_EQ(OperatorLabel(ops), c.label);
    }
}

TEST(OperatorLabels, GroupByCountryInOrder) {
    const std::vector<Operator> ops = {{"A", "US", "United States"},
                                       {"C", "CA", "Canada"},
                                       {"B", "US", "United States"}};
    EXPECT_EQ(OperatorLabel(ops), "A / B (United States) / C (Canada)");
    EXPECT_EQ(CountryLabel(ops), "United States / Canada");
    EXPECT_EQ(OperatorLabel({}), "");
    EXPECT_EQ(OperatorsJson({ops[1]}),
              nlohmann::json::parse(R"([{"name":"C","country":"CA","countryName":"Canada"}])"));
    EXPECT_EQ(OperatorsJson({}), nlohmann::json::array());
}

}  // namespace
}  // namespace Tarn::Analysis
