#include "sharedforms.h"

#include "formerrordialog.h"

std::unique_ptr<SharedForms> gcolForms;

SharedForms::SharedForms(formStorageImages &images, formErrorDialog &errorDialog)
    : images_(&images), errorDialog_(&errorDialog)
{
}
