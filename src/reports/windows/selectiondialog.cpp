#include "selectiondialog.h"

void SelectionDialog::setFrames(bool preview, int copies, int records, int orientation)
{
    form_.setPreview(preview);
    form_.setCopies(copies);
    form_.setRecords(records);
    form_.setOrientation(orientation);
}

void SelectionDialog::AddReport(const ReportRow &row)
{
    form_.AddReport(row.key, row.name, row.previewFlag, row.copiesFlag, row.selectionFlag, row.orientationFlag);
}
