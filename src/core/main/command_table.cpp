#include "core/main/command_table.h"

namespace zov {
namespace {

using enum CommandMenu;

constexpr bool Submenu = true;
constexpr bool Built = true;
constexpr bool Line = true;  // a separator above

}  // namespace

const std::vector<CommandEntry>& commandTable() {
    static const std::vector<CommandEntry> table = {
        {101, 0, File, "&Connect to the Server", ""},
        {102, 0, File, "Refresh - &Source", "F5", false, Built, Line},
        {103, 0, File, "Refresh - &Target", "Shift+F5"},
        {104, 0, File, "&Run Saved Comparison Process", "", false, Built, Line},
        {105, 0, File, "E&xit", "Alt+F4", false, Built, Line},

        {201, 0, Comparisons, "Compare &Selected Objects", "F7"},
        {202, 0, Comparisons, "Compare &All Objects", "Ctrl+F7"},
        {203, 0, Comparisons, "&Bulk Comparisons", "", Submenu, Built, Line},
        {204, 203, Comparisons, "&Simple", "", Submenu},
        {205, 204, Comparisons, "Compare All &Tables", ""},
        {206, 204, Comparisons, "Compare All &Procedures", ""},
        {207, 204, Comparisons, "Compare All &Functions", ""},
        {208, 204, Comparisons, "Compare All &Views", ""},
        {209, 204, Comparisons, "Compare All T&riggers", ""},
        {210, 204, Comparisons, "Compare All R&elationships", ""},
        {211, 204, Comparisons, "Compare All &Constraints", ""},
        {220, 203, Comparisons, "&Details", "", Submenu},
        {221, 220, Comparisons, "Compare All &Tables - Details", ""},
        {222, 220, Comparisons, "Compare All &Procedures - Details", ""},
        {223, 220, Comparisons, "Compare All &Functions - Details", ""},
        {224, 220, Comparisons, "Compare All &Views - Details", ""},
        {225, 220, Comparisons, "Compare All T&riggers - Details", ""},
        {226, 220, Comparisons, "Compare All R&elationships - Details", ""},
        {227, 220, Comparisons, "Compare All &Constraints - Details", ""},
        {230, 0, Comparisons, "&Selective Comparisons", "", Submenu},
        {231, 230, Comparisons, "Compare Selected &Tables", ""},
        {232, 230, Comparisons, "Compare Selected &Procedures", ""},
        {233, 230, Comparisons, "Compare Selected &Functions", ""},
        {234, 230, Comparisons, "Compare Selected &Views", ""},
        {235, 230, Comparisons, "Compare Selected T&riggers", ""},
        {236, 230, Comparisons, "Compare Selected R&elationships", ""},
        {237, 230, Comparisons, "Compare Selected &Constraints", ""},
        {240, 230, Comparisons, "&Details", "", Submenu},
        {241, 240, Comparisons, "Compare Selected &Tables - Details", ""},
        {242, 240, Comparisons, "Compare Selected &Procedures - Details", ""},
        {243, 240, Comparisons, "Compare Selected &Functions - Details", ""},
        {244, 240, Comparisons, "Compare Selected &Views - Details", ""},
        {245, 240, Comparisons, "Compare Selected T&riggers - Details", ""},
        {246, 240, Comparisons, "Compare Selected R&elationships - Details", ""},
        {247, 240, Comparisons, "Compare Selected &Constraints - Details", ""},
        {250, 0, Comparisons, "Compare and Print All Tables", "", false, Built, Line},

        {310, 0, Data, "Compare &Data in Single Pair of Tables", "Ctrl+F8"},
        {320, 0, Data, "Compare Data in &Selected Tables", ""},
        {330, 0, Data, "Compare Data in &All Tables", ""},

        {410, 0, Sql, "Build SQL CREATE Statement - &Source", ""},
        {420, 0, Sql, "Build SQL CREATE Statement - &Target", ""},

        {430, 0, Sql, "&Runnable Script - Source", "", Submenu, Built, Line},
        {431, 430, Sql, "&Selected Objects", ""},
        {432, 430, Sql, "All Objects of This &Type", ""},
        {433, 430, Sql, "Whole &Database", ""},
        {440, 0, Sql, "Ru&nnable Script - Target", "", Submenu},
        {441, 440, Sql, "&Selected Objects", ""},
        {442, 440, Sql, "All Objects of This &Type", ""},
        {443, 440, Sql, "Whole &Database", ""},

        {501, 0, Tools, "&Add Server", ""},
        {502, 0, Tools, "&Remove Server", ""},
        {503, 0, Tools, "Data Analyzer", "", Submenu, Built, Line},
        {504, 503, Tools, "Analyze Data in Source Table", ""},
        {505, 503, Tools, "Analyze Data in Target Table", ""},
        {506, 0, Tools, "&Find Object", "", Submenu},
        {507, 506, Tools, "In &Source Database", "Ctrl+Shift+F"},
        {508, 506, Tools, "In &Target Database", ""},
        {520, 0, Tools, "Find &Missing References", "", Submenu},
        {521, 520, Tools, "In &Source Database", ""},
        {522, 520, Tools, "In &Target Database", ""},
        {523, 520, Tools, "In Listed Objects of S&ource", "", false, Built, Line},
        {524, 520, Tools, "In Listed Objects of T&arget", ""},
        {509, 0, Tools, "Atta&ch Database", ""},
        {514, 0, Tools, "&Generate Update Script", ""},
        {510, 0, Tools, "List All Ignored Columns - &Data Comparisons", "", false, Built, Line},
        {511, 0, Tools, "List All Ignored Columns - &Structure Comparisons", ""},
        {513, 0, Tools, "&Options...", "", false, Built, Line},

        {610, 0, Help, "&Index...", ""},
        {620, 0, Help, "&Tip of the Day...", ""},
        {630, 0, Help, "Technical &Support", ""},
        {660, 0, Help, "&About...", "", false, Built, Line},

        {700, 0, PanePopUp, "Refresh", ""},
        {710, 0, PanePopUp, "Show Color Schema", ""},
        {720, 0, PanePopUp, "Visualize Differences", ""},
        {730, 0, PanePopUp, "Ignore Columns", ""},
        {740, 0, PanePopUp, "Compare Highlighted Sections", "", false, Built, Line},
        {750, 0, PanePopUp, "Build SQL CREATE Statement", ""},
        {760, 0, PanePopUp, "Find references to non-existent objects", ""},
        {765, 0, PanePopUp, "Only names that can't be found", ""},
        {770, 0, PanePopUp, "Print", "", false, Built, Line},
        {780, 0, PanePopUp, "Print Source And Target", ""},

        {801, 0, Debug, "Create Objects", ""},
        {802, 0, Debug, "Db_GetObjSchemaById", ""},
        {803, 0, Debug, "Temp", ""},
        {804, 0, Debug, "Generate Update Script", ""},
        {805, 0, Debug, "Execute Stored Procedure", ""},
        {806, 0, Debug, "&Attach Database", ""},
        {807, 0, Debug, "&Compare Tables", ""},
        {808, 0, Debug, "&Show List of Objects", ""},
        {809, 0, Debug, "Strip Comments", ""},
        {810, 0, Debug, "Get Table Constrains", ""},
        {811, 0, Debug, "Get Table Indexes", ""},
        {812, 0, Debug, "Create Stored Procedures", ""},
        {813, 0, Debug, "&Options", ""},
        {814, 0, Debug, "&Data Comparison Options", ""},
        {815, 0, Debug, "&Get Server Version", ""},
        {816, 0, Debug, "Options &New", ""},
        {817, 0, Debug, "Error &Report", ""},
    };
    return table;
}

const CommandEntry* findCommand(int id) {
    for (const CommandEntry& entry : commandTable())
        if (entry.id == id) return &entry;
    return nullptr;
}

const char* menuCaption(CommandMenu menu) {
    switch (menu) {
        case File:
            return "&File";
        case Comparisons:
            return "&Comparisons";
        case Data:
            return "&Data";
        case Sql:
            return "&SQL";
        case Tools:
            return "&Tools";
        case Help:
            return "&Help";
        case Debug:
            return "&Debug";
        case PanePopUp:
            break;
    }
    return "";
}

}  // namespace zov
