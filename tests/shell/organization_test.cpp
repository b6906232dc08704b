#include "appglobals.h"
#include "mdiparent.h"
#include "systemparameters.h"

#include "guiapplication.h"
#include "recordingmessages.h"
#include "sampleinstallationfixture.h"

#include <gtest/gtest.h>

namespace {

// The Organization command opens the organisation record before its dialog runs.
class OrganizationTest : public SampleInstallationTest {
protected:
    GuiApplicationGuard app;
    ScopedMessages shown;
    mdiParent frame;
    int dialogs = 0;

    void SetUp() override
    {
        struct Counted : ModalWorker {
            explicit Counted(int &runs) : runs_(runs) {}
            void DoModalForm() override { ++runs_; }
            int &runs_;
        };
        frame.registerModalWorker("workerSysParams", [this](const mdiParent::EntryProperties &) {
            return std::make_unique<Counted>(dialogs);
        });
    }
    void TearDown() override
    {
        resetAppGlobals();
        systemParameters.reset();
    }
};

TEST_F(OrganizationTest, UnopenableFileShowsTheStatusAndRunsNoDialog)
{
    gstrRootPath = root() + "/nowhere";
    gstrFundPath = gstrRootPath + "\\FUND";
    frame.MenuItem("mnuMaintOrganization")->trigger();
    ASSERT_EQ(shown->shown().size(), 1u);
    const ErrorDialogRequest &error = shown->shown()[0].error;
    EXPECT_EQ(error.mode, 4);
    EXPECT_EQ(error.title, "Kora-Budget");
    EXPECT_TRUE(error.text.startsWith("Cannot initialize system parameters. error:")) << error.text.toStdString();
    EXPECT_NE(error.text, "Cannot initialize system parameters. error:0");
    EXPECT_EQ(dialogs, 0);
}

TEST_F(OrganizationTest, OpenedRecordRunsTheDialogAndStaysBound)
{
    gstrRootPath = root();
    gstrFundPath = fund();
    frame.MenuItem("mnuMaintOrganization")->trigger();
    EXPECT_TRUE(shown->shown().empty());
    EXPECT_EQ(dialogs, 1);
    ASSERT_TRUE(systemParameters);
    EXPECT_TRUE(systemParameters->DataBound());
}

} // namespace
