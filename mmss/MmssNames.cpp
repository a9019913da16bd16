#include "mmss/MmssNames.h"

namespace Tarn::Mmss {

const NameTables& NameTables::Instance() {
    static const NameTables tables;
    return tables;
}

// The spellings are the ones users know from the editor's grids and text views ("8-minute" has
// no plural s), so they must not be tidied.
NameTables::NameTables()
    : sysType_("Sys Type",
               {{0, "cdma2000-AI"},
                {1, "3GPP_AI"},
                {2, "WiMAX"},
                {3, "cdma2000-1x"},
                {4, "cdma2000-HRPD"},
                {5, "GERAN"},
                {6, "UTRAN"},
                {7, "EUTRAN"}},
               DataError::InvalidSysTable),
      priorityClass_("Priority Class", {{0, "Home"}, {1, "Home-And-Preferred"}, {15, "Any"}},
                     DataError::InvalidSysTable),
      sysPri_("Sys Priority", {{0, "Same"}, {1, "More"}}, DataError::InvalidSysTable),
      searchTime_("High Pri Search Time",
                  {{0, "1-minute"},
                   {1, "2-minutes"},
                   {2, "4-minutes"},
                   {3, "8-minute"},
                   {4, "16-minutes"},
                   {5, "24-minutes"},
                   {6, "32-minutes"},
                   {7, "64-minutes"}},
                  DataError::InvalidSysTable),
      networkCap_("Network Cap", {{0, "Voice-And-Data"}, {1, "Not-Present"}},
                  DataError::InvalidSysTable),
      yesNo_("Present", {{1, "Yes"}, {0, "No"}}, DataError::InvalidPlmnType),
      ratId_("Rat Id",
             {{2, "CDMA-1x"},
              {3, "GERAN"},
              {4, "HRPD"},
              {5, "UTRAN"},
              {9, "EUTRAN"},
              {11, "TDSCDMA"},
              {12, "LTE_M1"},
              {13, "LTE_NB1"}},
             DataError::InvalidAcqType),
      plmnListKind_("File Type", {{1, "EHPLMN"}, {2, "OPLMN"}, {3, "UPLMN"}},
                    DataError::InvalidPlmnType) {}

}  // namespace Tarn::Mmss
