#include "chart.h"

namespace demo::chart {

namespace {

constexpr FundSpec fundTable[] = {
    {"A", "General Fund", "GEN", "General Fund Checking", "0041182736", 4200},
    {"C", "School Lunch Fund", "LUN", "School Lunch Checking", "0041182744", 180},
    {"F", "Special Aid Fund", "SPA", "Special Aid Checking", "0041182752", 40},
    {"H", "Capital Projects Fund", "CAP", "Capital Projects Checking", "0041182760", 1500},
    {"TA", "Trust & Agency Fund", "TRA", "Trust & Agency Checking", "0041182779", 75},
    {"V", "Debt Service Fund", "DEB", "Debt Service Checking", "0041182787", 900},
};

constexpr BuildingSpec buildingTable[] = {
    {"00", "District Office", "DO", ""},
    {"01", "Maple Ridge Elementary School", "MRES", "elem"},
    {"02", "Cedar Hollow Elementary School", "CHES", "elem"},
    {"03", "Northfield Middle School", "NMS", "sec"},
    {"04", "Northfield High School", "NHS", "sec"},
};

constexpr ProgramSpec programTable[] = {
    {"ADM", "Administration"},
    {"REG", "Regular Instruction"},
    {"SPE", "Special Education"},
    {"OCC", "Occupational Education"},
    {"PPS", "Pupil Personnel Services"},
    {"ATH", "Athletics & Activities"},
    {"TRN", "Transportation"},
    {"FAC", "Facilities"},
    {"BEN", "Employee Benefits"},
    {"DEB", "Debt & Transfers"},
    {"FDS", "Food Service"},
    {"GRT", "Grants"},
    {"CAP", "Capital Projects"},
    {"REV", "Revenue"},
};

constexpr FolderSpec folderTable[] = {
    {"A", 'R', "loc", "", "Local Sources"},
    {"A", 'R', "loc.tax", "loc", "Real Property Taxes & Items"},
    {"A", 'R', "loc.nonprop", "loc", "Non-Property Taxes"},
    {"A", 'R', "loc.charges", "loc", "Charges for Services"},
    {"A", 'R', "loc.money", "loc", "Use of Money & Property"},
    {"A", 'R', "loc.misc", "loc", "Miscellaneous Local Sources"},
    {"A", 'R', "state", "", "State Sources"},
    {"A", 'R', "fed", "", "Federal Sources"},
    {"A", 'R', "other", "", "Other Sources"},
    {"A", 'E', "gs", "", "General Support"},
    {"A", 'E', "gs.board", "gs", "Board of Education"},
    {"A", 'E', "gs.central", "gs", "Central Administration"},
    {"A", 'E', "gs.finance", "gs", "Finance"},
    {"A", 'E', "gs.staff", "gs", "Staff"},
    {"A", 'E', "gs.services", "gs", "Central Services"},
    {"A", 'E', "gs.special", "gs", "Special Items"},
    {"A", 'E', "inst", "", "Instruction"},
    {"A", 'E', "inst.admin", "inst", "Instruction Admin & Improvement"},
    {"A", 'E', "inst.teach", "inst", "Teaching - Regular School"},
    {"A", 'E', "inst.teach.elem", "inst.teach", "Elementary Schools"},
    {"A", 'E', "inst.teach.sec", "inst.teach", "Secondary Schools"},
    {"A", 'E', "inst.sped", "inst", "Students with Disabilities"},
    {"A", 'E', "inst.occ", "inst", "Occupational Education"},
    {"A", 'E', "inst.media", "inst", "Instructional Media"},
    {"A", 'E', "inst.pupil", "inst", "Pupil Services"},
    {"A", 'E', "trans", "", "Pupil Transportation"},
    {"A", 'E', "benefits", "", "Employee Benefits"},
    {"A", 'E', "debt", "", "Debt Service"},
    {"A", 'E', "transfers", "", "Interfund Transfers"},
    {"C", 'R', "loc", "", "Local Sources"},
    {"C", 'R', "aid", "", "State & Federal Aid"},
    {"C", 'E', "food", "", "School Food Service"},
    {"C", 'E', "benefits", "", "Employee Benefits"},
    {"F", 'R', "state", "", "State Grants"},
    {"F", 'R', "fed", "", "Federal Grants"},
    {"F", 'R', "other", "", "Other Sources"},
    {"F", 'E', "inst", "", "Instruction"},
    {"F", 'E', "inst.title", "inst", "Title I"},
    {"F", 'E', "inst.sped", "inst", "Students with Disabilities"},
    {"F", 'E', "benefits", "", "Employee Benefits"},
    {"H", 'R', "aid", "", "State Aid"},
    {"H", 'R', "fin", "", "Financing Sources"},
    {"H", 'E', "cap", "", "Capital Projects"},
    {"H", 'E', "cap.bldg", "cap", "Building Improvements"},
    {"H", 'E', "cap.site", "cap", "Site Improvements"},
    {"V", 'R', "loc", "", "Local Sources"},
    {"V", 'R', "other", "", "Other Sources"},
    {"V", 'E', "debt", "", "Debt Service"},
    {"V", 'E', "transfers", "", "Interfund Transfers"},
};

constexpr RevenueSpec revenueTable[] = {
    {"A", "A0599", "Appropriated Fund Balance", "other", "REV", 1200},
    {"A", "A1001", "Real Property Taxes", "loc.tax", "REV", 31500},
    {"A", "A1081", "Payments in Lieu of Taxes", "loc.tax", "REV", 420},
    {"A", "A1085", "STAR Reimbursement", "loc.tax", "REV", 3900},
    {"A", "A1090", "Interest & Penalties on Taxes", "loc.tax", "REV", 60},
    {"A", "A1120", "Sales Tax Distribution", "loc.nonprop", "REV", 1150},
    {"A", "A1311", "Day School Tuition - Other Districts", "loc.charges", "REV", 85},
    {"A", "A1410", "Admissions", "loc.charges", "REV", 25},
    {"A", "A2401", "Interest & Earnings", "loc.money", "REV", 180},
    {"A", "A2410", "Rental of Real Property", "loc.money", "REV", 40},
    {"A", "A2650", "Sale of Scrap & Excess Materials", "loc.misc", "REV", 8},
    {"A", "A2680", "Insurance Recoveries", "loc.misc", "REV", 20},
    {"A", "A2701", "Refund of Prior Year's Expenditures", "loc.misc", "REV", 90},
    {"A", "A2770", "Other Unclassified Revenues", "loc.misc", "REV", 50},
    {"A", "A3101", "Basic Formula Aid", "state", "REV", 19800},
    {"A", "A3102", "Lottery Grant", "state", "REV", 2400},
    {"A", "A3103", "BOCES Aid", "state", "REV", 900},
    {"A", "A3260", "Textbook Aid", "state", "REV", 150},
    {"A", "A3262", "Computer Software Aid", "state", "REV", 40},
    {"A", "A3263", "Library A/V Loan Program Aid", "state", "REV", 15},
    {"A", "A4601", "Medicaid Assistance", "fed", "REV", 110},
    {"A", "A5031", "Interfund Transfers", "other", "REV", 30},
    {"C", "C1440", "Sales - School Lunch", "loc", "FDS", 420},
    {"C", "C2401", "Interest & Earnings", "loc", "FDS", 1},
    {"C", "C2770", "Other Unclassified Revenues", "loc", "FDS", 5},
    {"C", "C3190", "State Reimbursement", "aid", "FDS", 35},
    {"C", "C4190", "Federal Reimbursement", "aid", "FDS", 520},
    {"C", "C4192", "Surplus Food", "aid", "FDS", 60},
    {"C", "C5031", "Interfund Transfers", "loc", "FDS", 40},
    {"F", "F3289", "Other State Aid", "state", "GRT", 220},
    {"F", "F4256", "Title I Grant", "fed", "GRT", 480},
    {"F", "F4289", "Other Federal Aid", "fed", "GRT", 650},
    {"F", "F5031", "Interfund Transfers", "other", "GRT", 120},
    {"H", "H3297", "State Aid - Building", "aid", "CAP", 1200},
    {"H", "H5710", "Serial Bonds", "fin", "CAP", 6500},
    {"H", "H5731", "Bond Anticipation Notes", "fin", "CAP", 2500},
    {"H", "H5031", "Interfund Transfers", "fin", "CAP", 100},
    {"V", "V2401", "Interest & Earnings", "loc", "DEB", 15},
    {"V", "V5031", "Interfund Transfers", "other", "DEB", 600},
};

using enum Placement;

constexpr FunctionSpec functionTable[] = {
    {"A", "1010", "Board of Ed", "gs.board", "400 450", "A", DistrictWide, "ADM", 60},
    {"A", "1040", "District Clerk", "gs.board", "160 400 450", "A", DistrictWide, "ADM", 45},
    {"A", "1060", "District Meeting", "gs.board", "400 450", "A", DistrictWide, "ADM", 20},
    {"A", "1240", "Chief School Adm", "gs.central", "150 160 400 450", "A", DistrictWide, "ADM", 320},
    {"A", "1310", "Business Admin", "gs.finance", "150 160 400 450", "A", DistrictWide, "ADM", 380},
    {"A", "1320", "Auditing", "gs.finance", "400", "A", DistrictWide, "ADM", 55},
    {"A", "1325", "Treasurer", "gs.finance", "160 400", "A", DistrictWide, "ADM", 40},
    {"A", "1330", "Tax Collector", "gs.finance", "160 400 450", "A", DistrictWide, "ADM", 30},
    {"A", "1345", "Purchasing", "gs.finance", "160 400", "A", DistrictWide, "ADM", 60},
    {"A", "1420", "Legal", "gs.staff", "400", "A", DistrictWide, "ADM", 90},
    {"A", "1430", "Personnel", "gs.staff", "160 400 450", "A", DistrictWide, "ADM", 150},
    {"A", "1480", "Public Info", "gs.staff", "160 400", "A", DistrictWide, "ADM", 70},
    {"A", "1620", "Oper of Plant", "gs.services", "160 200 400 450", "C", EachSchool, "FAC", 2400},
    {"A", "1621", "Maint of Plant", "gs.services", "160 200 400 450", "C", DistrictWide, "FAC", 450},
    {"A", "1670", "Central Printing", "gs.services", "400 450", "A", DistrictWide, "ADM", 40},
    {"A", "1680", "Data Processing", "gs.services", "160 200 400 450", "A", DistrictWide, "ADM", 220},
    {"A", "1910", "Unalloc Insur", "gs.special", "400", "A", DistrictWide, "ADM", 180},
    {"A", "1920", "Assoc Dues", "gs.special", "400", "A", DistrictWide, "ADM", 15},
    {"A", "1930", "Judgments Claims", "gs.special", "400", "P", DistrictWide, "ADM", 25},
    {"A", "1964", "Tax Refunds", "gs.special", "400", "P", DistrictWide, "ADM", 30},
    {"A", "1981", "BOCES Admin", "gs.special", "490", "A", DistrictWide, "ADM", 210},
    {"A", "2010", "Curriculum Dev", "inst.admin", "150 400 450", "A", DistrictWide, "REG", 120},
    {"A", "2020", "Supervision", "inst.admin", "150 160 400 450", "A", EachSchool, "REG", 1520},
    {"A", "2070", "Inservice Train", "inst.admin", "400 450", "P", DistrictWide, "REG", 60},
    {"A", "2110", "Teaching-Regular", "inst.teach.*", "120 140 160 200 400 450 460", "P", EachSchool, "REG", 16800},
    {"A", "2250", "Special Ed", "inst.sped", "150 160 400 450 490", "P", DistrictWide, "SPE", 2600},
    {"A", "2280", "Occupational Ed", "inst.occ", "490", "P", DistrictWide, "OCC", 650},
    {"A", "2610", "School Library", "inst.media", "150 450 460", "P", EachSchool, "REG", 440},
    {"A", "2630", "Computer Instr", "inst.media", "200 400 450 490", "P", DistrictWide, "REG", 320},
    {"A", "2805", "Attendance", "inst.pupil", "160", "P", DistrictWide, "PPS", 60},
    {"A", "2810", "Guidance", "inst.pupil", "150 400 450", "P", DistrictWide, "PPS", 520},
    {"A", "2815", "Health Services", "inst.pupil", "160 400 450", "P", EachSchool, "PPS", 360},
    {"A", "2820", "Psychological", "inst.pupil", "150 400", "P", DistrictWide, "PPS", 300},
    {"A", "2825", "Social Work", "inst.pupil", "150", "P", DistrictWide, "PPS", 180},
    {"A", "2850", "Co-Curricular", "inst.pupil", "150 400 450", "P", DistrictWide, "ATH", 120},
    {"A", "2855", "Athletics", "inst.pupil", "150 160 400 450", "P", DistrictWide, "ATH", 450},
    {"A", "5510", "Transportation", "trans", "160 200 400 450", "P", DistrictWide, "TRN", 1400},
    {"A", "5530", "Garage Building", "trans", "400 450", "P", DistrictWide, "TRN", 60},
    {"A", "5540", "Contract Transp", "trans", "400", "P", DistrictWide, "TRN", 380},
    {"A", "9010", "State Retirement", "benefits", "800", "AP", DistrictWide, "BEN", 650},
    {"A", "9020", "Teachers Retire", "benefits", "800", "AP", DistrictWide, "BEN", 1500},
    {"A", "9030", "Social Security", "benefits", "800", "AP", DistrictWide, "BEN", 1800},
    {"A", "9040", "Workers Comp", "benefits", "800", "AP", DistrictWide, "BEN", 280},
    {"A", "9045", "Life Insurance", "benefits", "800", "AP", DistrictWide, "BEN", 25},
    {"A", "9050", "Unemployment", "benefits", "800", "AP", DistrictWide, "BEN", 20},
    {"A", "9055", "Disability Ins", "benefits", "800", "AP", DistrictWide, "BEN", 15},
    {"A", "9060", "Health Insurance", "benefits", "800", "APC", DistrictWide, "BEN", 5200},
    {"A", "9711", "Serial Bonds", "debt", "600 700", "C", DistrictWide, "DEB", 2100},
    {"A", "9731", "BANs", "debt", "600 700", "C", DistrictWide, "DEB", 350},
    {"A", "9901", "Transfers", "transfers", "950", "P", DistrictWide, "DEB", 400},
    {"C", "2860", "School Lunch", "food", "160 200 400 450", "", DistrictWide, "FDS", 400},
    {"C", "9010", "State Retirement", "benefits", "800", "", DistrictWide, "FDS", 30},
    {"C", "9030", "Social Security", "benefits", "800", "", DistrictWide, "FDS", 40},
    {"C", "9060", "Health Insurance", "benefits", "800", "", DistrictWide, "FDS", 120},
    {"F", "2110", "Title I Remedial", "inst.title", "150 450", "", DistrictWide, "GRT", 420},
    {"F", "2250", "Special Ed Grant", "inst.sped", "150 160 400 490", "", DistrictWide, "GRT", 600},
    {"F", "9030", "Social Security", "benefits", "800", "", DistrictWide, "GRT", 60},
    {"F", "9060", "Health Insurance", "benefits", "800", "", DistrictWide, "GRT", 150},
    {"H", "1620", "Building Improv", "cap.bldg", "210 220 230 400", "", DistrictWide, "CAP", 2500},
    {"H", "1640", "Site Improv", "cap.site", "240 250", "", DistrictWide, "CAP", 900},
    {"V", "9711", "Serial Bonds", "debt", "600 700", "", DistrictWide, "DEB", 550},
    {"V", "9901", "Transfers", "transfers", "950", "", DistrictWide, "DEB", 100},
};

constexpr ObjectSpec objectTable[] = {
    {"120", "Teachers", 100}, {"140", "Substitute", 8},  {"150", "Instr Sal", 100}, {"160", "Non-Instr", 60},
    {"200", "Equipment", 6},  {"210", "HS Roof", 100},   {"220", "Elem HVAC", 80},  {"230", "MS Windows", 60},
    {"240", "Fields", 100},   {"250", "Paving", 40},     {"400", "Contract", 30},   {"450", "Supplies", 10},
    {"460", "Textbooks", 4},  {"490", "BOCES", 100},     {"600", "Principal", 100}, {"700", "Interest", 35},
    {"800", "Benefits", 100}, {"950", "Transfers", 100},
};

constexpr ComponentShare shareTable[] = {
    {"A", 100, 0, 0}, {"P", 0, 100, 0}, {"C", 0, 0, 100}, {"AP", 25, 75, 0}, {"APC", 20, 70, 10},
};

constexpr const char *retiredTable[] = {"A1060.450", "A2070.450", "A2805.160", "A5530.450"};

} // namespace

std::span<const FundSpec> funds()
{
    return fundTable;
}
std::span<const BuildingSpec> buildings()
{
    return buildingTable;
}
std::span<const ProgramSpec> programs()
{
    return programTable;
}
std::span<const FolderSpec> folders()
{
    return folderTable;
}
std::span<const RevenueSpec> revenues()
{
    return revenueTable;
}
std::span<const FunctionSpec> functions()
{
    return functionTable;
}
std::span<const ObjectSpec> objects()
{
    return objectTable;
}
std::span<const ComponentShare> componentShares()
{
    return shareTable;
}
std::span<const char *const> retiredCodes()
{
    return retiredTable;
}

} // namespace demo::chart
