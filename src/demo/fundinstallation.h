#pragma once

#include "district.h"
#include "sampleinstallation.h"

namespace demo {

// The district as the fund-accounting sample installation takes it: its
// closed and current years, funds, the live account codes of every ledger
// (general ledger included) with the current year's adopted budget, and one
// building record per building node, keyed by the node id the accounts carry.
SampleDistrict sampleDistrictOf(const District &district);

} // namespace demo
