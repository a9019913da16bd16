// The list-level checks run before a roaming list is saved, converted or rendered: the header
// fields of the property page, the record grids read back row by row, and the whole list (record
// counts, every record's own check, acquisition indices and which system types may use which
// acquisition types). Used by the editor and the command line alike.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "roaming_list/RLData.h"

namespace Tarn {

class Grid;

// One failure, named by its message number and shown with its text.
struct ValidationIssue {
    unsigned messageId = 0;  // the message table number; 0 when the failure is a data error
    int dataError = 0;       // the CDataException code of a name that is not in its list
    std::string text;        // the text the user is shown, arguments filled in
    std::string table;       // the grid or table it is in; empty for the header and the list
    int row = -1;            // zero-based grid row, which is also the record index; -1: none
    int column = -1;         // zero-based grid column; -1: none

    // One line for a log or the command line, e.g.
    // "156 (System Table, row 3, column 4): An invalid ACQ Index is entered ...".
    std::string Describe() const;
};

struct ValidationResult {
    std::vector<ValidationIssue> issues;
    bool Ok() const { return issues.empty(); }
};

// The two required header fields as the property page holds them, checked in this order: an
// empty, non-decimal or too large default roaming indicator gives message 160 (bound 255), a
// preferred list ID likewise message 161 (bound 65535). The first failure stops the check. When
// both pass and `into` is given, their values are stored there.
std::optional<ValidationIssue> CheckHeaderFields(const std::string& defRoamIndText,
                                                 const std::string& prefListIdText,
                                                 CPropData* into = nullptr);

// The message that refuses a system record of `sysType` pointing at an acquisition record of
// `acqType` (163, 167, 196, 204, 205 or 197), or 0 when it is accepted. `mccMncSubtype` matters
// for MCC-MNC records only. Type 253, a record the editor does not model, is accepted by all.
unsigned AcqTypeRefusal(int sysType, int mccMncSubtype, int acqType);

// The checks of a list held in memory (read from a file, from text or JSON, or converted):
// 155 without acquisition records, 154 without system records, 144 for each acquisition record
// and 145 for each system record whose own check fails, 156 for an acquisition index beyond the
// table and the refusals of AcqTypeRefusal; record failures name the record as the row and the
// acquisition index column (4) as the column.
ValidationResult CheckRoamingList(const CRLData& data, int version);

// Reads every row of a record grid into new records of `version`, top to bottom. Column 0 holds
// the type name (AcqTypes(version) or SysTypes(version)); a row whose type cell is empty fails
// with message 198, and every other failure is the record's own (a GridError, or a data error for
// a name not in its list). Reading goes on after a failed row so that every failure is named;
// `out` receives the rows that were read and is complete only when the result is Ok.
//
// `previous`, when given, is the table the grid was filled from: a row whose type cell still
// shows the name of the record it came from (even "Invalid", for types no list names) is read
// into a copy of that record, so fields the grid does not show are kept.
ValidationResult ReadAcqTableFromGrid(const Grid& grid, int version, CRLItemList& out,
                                      const CRLItemList* previous = nullptr);
// The same for the system grid; system records check their acquisition index against `acqTable`.
ValidationResult ReadSysTableFromGrid(const Grid& grid, int version, const CRLItemList& acqTable,
                                      CRLItemList& out, const CRLItemList* previous = nullptr);

// Everything a save takes from the editor, in order: the header fields (stopping there on
// failure), both grids (the system grid only when the acquisition grid read cleanly, since its
// indices point into it), then CheckRoamingList. `data` is changed only when all of it passes;
// its current tables serve as `previous` for the grids.
ValidationResult TakeListFromEditor(const std::string& defRoamIndText,
                                    const std::string& prefListIdText, const Grid& acqGrid,
                                    const Grid& sysGrid, int version, CRLData& data);

}  // namespace Tarn
