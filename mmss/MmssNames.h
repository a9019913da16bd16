// The value-name lists of the MMSS kinds, built once on first use and shared by every document.
#pragma once

#include "roaming_list/NameTables.h"

namespace Tarn::Mmss {

class NameTables {
public:
    static const NameTables& Instance();

    // MSPL records and MLPL location tags.
    const CNameList& SysType() const { return sysType_; }
    const CNameList& PriorityClass() const { return priorityClass_; }
    const CNameList& SysPri() const { return sysPri_; }
    const CNameList& SearchTime() const { return searchTime_; }
    const CNameList& NetworkCap() const { return networkCap_; }
    // PLMN access technology flags: 1 "Yes", 0 "No".
    const CNameList& YesNo() const { return yesNo_; }
    // Radio access technologies of the technology order table and the 3GPP BST.
    const CNameList& RatId() const { return ratId_; }
    // 1 "EHPLMN", 2 "OPLMN", 3 "UPLMN".
    const CNameList& PlmnListKind() const { return plmnListKind_; }

private:
    NameTables();

    CNameList sysType_, priorityClass_, sysPri_, searchTime_, networkCap_, yesNo_, ratId_,
        plmnListKind_;
};

}  // namespace Tarn::Mmss
