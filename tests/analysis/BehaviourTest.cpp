// Behaviour of a list over every observation: the class walk against brute force on small random
// lists, what changes behaviour and what does not, and optimize's result proven the same way.
#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <random>
#include <set>

#include "analysis/Behaviour.h"
#include "analysis/Lint.h"
#include "analysis/Optimize.h"
#include "roaming_list/RLFile.h"
#include "roaming_list/RLJson.h"
#include "roaming_list/RLManager.h"
#include "tests/support/JsonList.h"

namespace Tarn::Analysis {
namespace {

using nlohmann::json;
using Test::PcsChannels;
using Test::Sid;

json ListJson(const json& acq, const json& sys, bool prefOnly = false, int version = 3) {
    return {{"version", version},
            {"header", {{"prefListId", 7}, {"prefOnly", prefOnly}, {"defRoamInd", 1}}},
            {"acquisitionTable", acq},
            {"systemTable", sys}};
}

std::unique_ptr<CRLData> FromJson(const json& j) {
    int version = 0;
    return ListFromJson(j, version);
}

// ---- random lists small enough to walk every observation of ----

// SIDs 1..3 with NIDs 0..2 or any; MCC 310 with MNC digits 0, 1 or any; subnet prefixes within the
// first 8 bits; channels 1..8 of the cellular and PCS bands. Only SIDs when `writable`: the writer
// wants HRPD acquisition records for subnets.
json RandomList(std::mt19937& rng, bool writable = false) {
    auto pick = [&rng](int n) { return static_cast<int>(rng() % static_cast<unsigned>(n)); };
    json acq = json::array();
    const int acqCount = 1 + pick(4);
    for (int a = 0; a < acqCount; ++a) {
        json channels = json::array();
        for (int c = 1; c <= 8; ++c)
            if (pick(3) == 0) channels.push_back(c);
        if (channels.empty()) channels.push_back(1 + pick(8));
        acq.push_back({{"type", pick(2) ? 6 : 3}, {"channels", channels}});
    }
    json sys = json::array();
    const int sysCount = 2 + pick(9);
    for (int i = 0; i < sysCount; ++i) {
        json r = Test::SysCommon(0, pick(4) != 0, i == 0 || pick(4) == 0, pick(2) == 1, pick(acqCount), pick(3));
        const int kind = writable ? 0 : pick(10);
        if (kind < 6) {
            const int nid = pick(4);
            r.update({{"sid", 1 + pick(3)}, {"nidIncl", nid == 3 ? 0 : 1}, {"nid", nid == 3 ? 65535 : nid}});
        } else if (kind < 8) {
            const char digits[] = {'0', '1', 'F'};
            r.update({{"type", 3}, {"subtype", 0}, {"mcc", "310"}});
            r["mnc"] = std::string{digits[pick(3)], digits[pick(3)]} + (pick(2) ? std::string(1, digits[pick(3)]) : "");
        } else {
            std::array<uint16_t, 8> words{};
            words[0] = static_cast<uint16_t>(pick(256) << 8);
            r["type"] = 1;
            r["subnet"] = FormatIpv6(words) + "/" + std::to_string(pick(9));
        }
        if (pick(3) == 0) r.update({{"assnIncluded", 1}, {"assnTag", pick(2)}, {"pnAssn", pick(2)}, {"dataAssn", pick(2)}});
        sys.push_back(r);
    }
    return ListJson(acq, sys, pick(2) == 1, writable ? 3 : 5);
}

// One small change of the kinds reviewers meet.
json Mutate(json list, std::mt19937& rng) {
    auto pick = [&rng](size_t n) { return static_cast<size_t>(rng() % n); };
    json& sys = list["systemTable"];
    json& acq = list["acquisitionTable"];
    json& r = sys[pick(sys.size())];
    const auto flip = [&r](const char* field) { r[field] = 1 - r[field].get<int>(); };
    switch (pick(8)) {
        case 0: r["roamInd"] = (r["roamInd"].get<int>() + 1) % 3; break;
        case 1: flip("negPref"); break;
        case 2: r["acqIndex"] = pick(acq.size()); break;
        case 3: flip("priority"); break;
        case 4: list["header"]["prefOnly"] = !list["header"]["prefOnly"].get<bool>(); break;
        case 5: acq[pick(acq.size())]["channels"].push_back(pick(8)); break;
        case 6: {  // a record moves
            json moved = r;
            sys.erase(sys.begin() + static_cast<long>(pick(sys.size())));
            sys.insert(sys.begin() + static_cast<long>(pick(sys.size() + 1)), moved);
            sys[0]["geography"] = 0;
            break;
        }
        default: flip("geography"); break;
    }
    return list;
}

// Every observation the random lists can tell apart, with the system a reviewer would file it
// under.
std::vector<std::pair<std::string, Observation>> BruteSpace(const NamedSystems& named) {
    std::set<unsigned> sids;
    for (const auto& s : named.sids) sids.insert(s.sid);
    std::vector<std::pair<std::optional<unsigned>, std::optional<unsigned>>> channels{{std::nullopt, std::nullopt}};
    for (unsigned band : {0u, 1u, 2u})
        for (unsigned c = 0; c <= 9; ++c) channels.emplace_back(band, c);
    std::vector<std::pair<std::string, Observation>> out;
    const auto add = [&](const std::string& system, Observation o) {
        for (const auto& [band, channel] : channels) {
            o.band = band;
            o.channel = channel;
            out.emplace_back(system, o);
        }
    };
    for (unsigned sid = 0; sid <= 4; ++sid)
        for (int nid = -1; nid <= 4; ++nid) {
            Observation o;
            o.sid = sid;
            if (nid >= 0) o.nid = nid == 4 ? 65535u : static_cast<unsigned>(nid);
            add(sids.count(sid) ? "SID " + std::to_string(sid) : "SIDs no record names", o);
        }
    // The records state MNC digits 0 and 1 only, so 2 and 7 stand for the other eight.
    Observation mcc;
    mcc.kind = Observation::Kind::MccMnc;
    mcc.mcc = "310";
    for (char a : {'0', '1', '2', '7'})
        for (char b : {'0', '1', '2', '7'})
            for (char c : {' ', '0', '1', '2', '7'}) {
                mcc.mnc = c == ' ' ? std::string{a, b} : std::string{a, b, c};
                add(named.mccs.empty() ? "MCCs no record names" : "MCC 310", mcc);
            }
    mcc.mcc = "311";
    out.emplace_back("MCCs no record names", mcc);
    Observation subnet;
    subnet.kind = Observation::Kind::Subnet;
    for (unsigned top = 0; top < 256; ++top) {
        subnet.address[0] = static_cast<uint16_t>(top << 8);
        add("subnet", subnet);
    }
    return out;
}

std::string Key(const Behaviour& a, const Behaviour& b) {
    auto one = [](const Behaviour& x) {
        return std::to_string(static_cast<int>(x.verdict)) + "/" + (x.roamInd ? std::to_string(*x.roamInd) : "-") +
               "/" + std::to_string(x.acquisition) + "/" + std::to_string(x.lookedFor) + "/" +
               std::to_string(x.associated);
    };
    return one(a) + " | " + one(b);
}

TEST(BehaviourTest, ClassesMatchBruteForceOnRandomLists) {
    std::mt19937 rng(20261124);
    int differing = 0;
    for (int round = 0; round < 60; ++round) {
        const json ja = RandomList(rng);
        const json jb = round % 6 == 0 ? ja : Mutate(ja, rng);
        auto a = FromJson(ja), b = FromJson(jb);
        auto cmp = CompareBehaviour(*a, *b);

        // Per system, the pairs of behaviours the classes show must be exactly those that the
        // observations themselves get: nothing missed, nothing invented.
        std::map<std::string, std::set<std::string>> brute, classes;
        NamedSystems named;
        for (const ListBehaviour* list : {cmp->a.get(), cmp->b.get()})
            for (size_t i = 0; i < list->Selection().Facts().SystemCount(); ++i)
                AddNamedSystems(list->Selection().Facts().System(i), named);
        bool bruteSame = true;
        for (const auto& [system, o] : BruteSpace(named)) {
            const Behaviour ba = cmp->a->Of(o), bb = cmp->b->Of(o);
            brute[system].insert(Key(ba, bb));
            bruteSame = bruteSame && ba == bb;
        }
        const Selector* lists[] = {&cmp->a->Selection(), &cmp->b->Selection()};
        for (const auto& cls : ObservationClasses(lists))
            classes[cls.observation.kind == Observation::Kind::Subnet ? "subnet" : cls.system].insert(
                Key(cmp->a->Of(cls.observation), cmp->b->Of(cls.observation)));
        EXPECT_EQ(brute, classes) << "round " << round << "\n" << ja.dump() << "\n" << jb.dump();
        EXPECT_EQ(cmp->Same(), bruteSame) << "round " << round;
        differing += !bruteSame;
    }
    EXPECT_GT(differing, 20);  // the mutations do reach behaviour
}

TEST(BehaviourTest, OptimizedRandomListsBehaveTheSameAndReadBack) {
    std::mt19937 rng(7);
    size_t saved = 0;
    for (int round = 0; round < 40; ++round) {
        json j = RandomList(rng, true);
        // Give the optimiser something to find: a duplicate of a record and of an acquisition.
        j["systemTable"].push_back(j["systemTable"].back());
        j["systemTable"].back()["geography"] = 1;
        j["acquisitionTable"].push_back(j["acquisitionTable"][0]);
        auto list = FromJson(j);
        OptimizeResult r = OptimizeList(*list, 3);
        ASSERT_TRUE(r.error.empty() && r.proven) << r.error << "\n" << j.dump();
        EXPECT_LE(r.bytesAfter, r.bytesBefore);
        saved += r.bytesBefore - r.bytesAfter;

        // What the optimiser wrote reads back as the list it proved.
        auto manager = CreateClassFactory(3)->CreateManager();
        auto copy = std::make_unique<CRLData>(*r.data);
        manager->AttachData(copy);
        CRLFile file;
        ASSERT_TRUE(manager->WriteList(file));
        EXPECT_EQ(file.Bytes().size(), r.bytesAfter);
        CRLFile readBack(file.Bytes());
        DetectResult detected = DetectVersion(readBack);
        ASSERT_TRUE(detected.manager);
        EXPECT_TRUE(CompareBehaviour(*list, *detected.manager->DetachData())->Same()) << j.dump();
    }
    EXPECT_GT(saved, 0u);
}

// ---- what is and is not behaviour ----

const json kAcq = json::array({PcsChannels({25, 50}), PcsChannels({75}), Test::CellularCustom({283})});

json BaseSystems() {
    return json::array({Sid(100, 65535, true, true, true, 0, 1), Sid(200, 65535, true, false, false, 1, 0),
                        Sid(300, 7, false, false, false, 2), Sid(100, 65535, true, true, false, 2, 2)});
}

TEST(BehaviourTest, WhatChangesBehaviourAndWhatDoesNot) {
    const json base = ListJson(kAcq, BaseSystems());
    const std::vector<std::pair<std::function<void(json&)>, std::set<std::string>>> cases = {
        // The edit, and the systems reported as changed (none: the lists behave the same).
        {[](json& l) {  // acquisition table reordered
             std::swap(l["acquisitionTable"][0], l["acquisitionTable"][2]);
             for (auto& r : l["systemTable"]) r["acqIndex"] = 2 - r["acqIndex"].get<int>();
         },
         {}},
        {[](json& l) {  // exact duplicate of a record
             l["systemTable"].insert(l["systemTable"].begin() + 1, l["systemTable"][0]);
             l["systemTable"][1]["geography"] = 1;
         },
         {}},
        {[](json& l) {  // duplicate acquisition record
             l["acquisitionTable"].push_back(l["acquisitionTable"][1]);
             l["systemTable"][1]["acqIndex"] = 3;
         },
         {}},
        {[](json& l) { l.update({{"version", 5}, {"header", {{"prefListId", 99}, {"defRoamInd", 1}}}}); }, {}},
        {[](json& l) { l["systemTable"][1]["roamInd"] = 2; }, {"SID 200"}},
        {[](json& l) { l["header"]["prefOnly"] = true; },
         {"SID 300", "SIDs no record names", "MCCs no record names", "subnets no record names"}},
        // SID 300 is acquired through the record that grew.
        {[](json& l) { l["acquisitionTable"][2]["channels"].push_back(284); }, {"SID 100", "SID 300"}},
        {[](json& l) { l["systemTable"][0]["priority"] = 0; }, {"SID 200"}},
    };
    for (const auto& [edit, expected] : cases) {
        json edited = base;
        edit(edited);
        auto cmp = CompareBehaviour(*FromJson(base), *FromJson(edited));
        EXPECT_EQ(cmp->Same(), expected.empty()) << edited.dump();
        std::set<std::string> systems;
        for (const auto& g : GroupBehaviourChanges(*cmp)) systems.insert(g.system);
        EXPECT_EQ(systems, expected) << BehaviourDiffText(*cmp);
    }
}

TEST(BehaviourTest, JsonNamesTheObservationAndBothBehaviours) {
    json edited = ListJson(kAcq, BaseSystems());
    edited["systemTable"][1]["roamInd"] = 2;
    auto cmp = CompareBehaviour(*FromJson(ListJson(kAcq, BaseSystems())), *FromJson(edited));
    const auto j = BehaviourDiffJson(*cmp);
    EXPECT_FALSE(j["same"].get<bool>());
    // A NID no record names and an unknown NID match the same record: one class.
    ASSERT_EQ(j["changes"].size(), 1u);
    const auto& change = j["changes"][0];
    EXPECT_EQ(change["observation"]["sid"], 200);
    EXPECT_TRUE(change["band"].is_null());
    EXPECT_EQ(change["a"]["verdict"], "preferred");
    EXPECT_EQ(change["a"]["roamInd"], 0);
    EXPECT_EQ(change["b"]["roamInd"], 2);
    EXPECT_EQ(change["a"]["acquisition"]["channels"], json({75}));
    // SID 200 sits below SID 100 in its GEO: the handset keeps looking for SID 100.
    ASSERT_EQ(change["a"]["morePreferred"].size(), 1u);
    EXPECT_EQ(change["a"]["morePreferred"][0]["system"], json::parse(R"({"sid": 100, "nid": 65535, "type": 0})"));
    EXPECT_EQ(j["counts"]["changedSystems"], 1);
}

// ---- optimize, step by step ----

TEST(OptimizeTest, EachStepSavesWhatItFinds) {
    json sys = BaseSystems();
    sys[2]["nid"] = 0;  // NID 0 stored in 16 bits
    sys.push_back(Sid(400, 65535, true, true, false, 1));
    sys.back()["nidIncl"] = 1;  // NID 65535 stored in 16 bits
    sys.push_back(sys[1]);      // a second SID 200 that never wins
    sys.back()["geography"] = 1;
    sys[0]["assnIncluded"] = 1;  // an association nothing shares
    sys[0]["assnTag"] = 3;
    json acq = kAcq;
    acq.push_back(PcsChannels({600}));  // used by nothing
    acq.push_back(kAcq[1]);             // equal to record 1
    sys[3]["acqIndex"] = 4;
    OptimizeResult r = OptimizeList(*FromJson(ListJson(acq, sys, false, 5)), 5);
    ASSERT_TRUE(r.proven);
    std::map<std::string, size_t> records;
    for (const auto& s : r.steps) {
        records[s.id] = s.records;
        EXPECT_LE(s.bytesAfter, s.bytesBefore) << s.id;
    }
    EXPECT_EQ(records, (std::map<std::string, size_t>{{"redundant-systems", 1}, {"unused-association", 1},
                                                      {"short-nid", 2}, {"unused-acquisition", 1},
                                                      {"duplicate-acquisition", 1}}));
    EXPECT_EQ(r.data->GetSysTable().GetSize(), 5u);
    EXPECT_EQ(r.data->GetAcqTable().GetSize(), 3u);
    EXPECT_EQ(r.data->GetProperties().prefListId, 7);
    EXPECT_EQ(r.bytesAfter, WrittenListSize(*r.data, 5));
    EXPECT_LT(r.bytesAfter, r.bytesBefore);
}

TEST(OptimizeTest, RecordsOthersRankAgainstStay) {
    // SID 200 never wins (the earlier SID 200 scans all it scans) but SID 500, below it in the
    // GEO, keeps looking for it: only the duplicate in the same place may go, and the first SID
    // 200 takes the "More" of the one dropped.
    auto list = FromJson(ListJson(kAcq, json::array({Sid(200, 65535, true, true, true, 0), Sid(200, 65535, true, false, true, 0),
                                                     Sid(500, 65535, true, false, false, 1)})));
    OptimizeResult r = OptimizeList(*list, 3);
    ASSERT_TRUE(r.proven);
    ASSERT_EQ(r.data->GetSysTable().GetSize(), 2u);
    EXPECT_TRUE(CompareBehaviour(*list, *r.data)->Same());
}

}  // namespace
}  // namespace Tarn::Analysis
