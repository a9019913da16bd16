// Feeds arbitrary bytes to the policy reader. Whatever it accepts must run over a small list
// with every rule, and whatever it refuses must say why.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "analysis/Lint.h"
#include "analysis/Policy.h"
#include "roaming_list/AcqItemPcs.h"
#include "roaming_list/RLData.h"
#include "roaming_list/SysItemIS2000.h"

namespace {

const Tarn::CRLData& SampleList() {
    static const Tarn::CRLData list = [] {
        Tarn::CRLData data;
        auto acq = std::make_unique<Tarn::CAcqItemPcsCdmaChannels>();
        acq->SetChannels({25, 1300});
        data.GetAcqTable().Items().Add(std::move(acq));
        for (unsigned sid : {4106u, 4106u, 7u}) {
            auto sys = std::make_unique<Tarn::CSysItemIS2000>();
            sys->SetSid(sid);
            data.GetSysTable().Items().Add(std::move(sys));
        }
        return data;
    }();
    return list;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    Tarn::Analysis::Policy policy;
    std::string error;
    if (!Tarn::Analysis::ParsePolicy(std::string(reinterpret_cast<const char*>(data), size), policy,
                                     error)) {
        if (error.empty()) std::abort();
        return 0;
    }
    for (const auto& f : Tarn::Analysis::LintRoamingList(SampleList(), size, &policy))
        if (f.rule.empty() || f.message.empty()) std::abort();
    return 0;
}
