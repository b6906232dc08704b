#pragma once

#include "currency.h"

#include <QString>

#include <cstdint>

// One equalization district (table TaxRate). Rates are plain numbers,
// assessments amounts.
struct clsEqualizationItem {
    std::int32_t ID = 0;
    QString DistrickName; // the district's town; the name's spelling is part of the interface
    double CurrentRate = 0.0;
    Currency CurrentTotalAssessment;
    Currency CurrentTaxableAssessment;
    double PriorRate = 0.0;
    Currency PriorTotalAssessment;
    Currency PriorTaxableAssessment;
};
