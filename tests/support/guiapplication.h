#pragma once

#include "budgetapplication.h"

#include <gtest/gtest.h>

#include <memory>

// Owns the one application object of a widget test binary and ends it when
// the tests are done, before the exit handlers take Qt's own statics away.
// It is the program's own, so an error thrown by a handler stops at its
// event in the tests as it does in the program.
class GuiApplicationEnvironment : public ::testing::Environment {
public:
    BudgetApplication &application()
    {
        if (!app_)
            app_ = std::make_unique<BudgetApplication>(argc_, argv_);
        return *app_;
    }
    void TearDown() override { app_.reset(); }

private:
    int argc_ = 1;
    char name_[11] = "kora-tests";
    char *argv_[2] = {name_, nullptr};
    std::unique_ptr<BudgetApplication> app_;
};

// The first call creates the application (on the offscreen platform the test
// runner selects); gtest owns the environment that holds it.
inline BudgetApplication &guiApplication()
{
    static GuiApplicationEnvironment *const environment = [] {
        auto *created = new GuiApplicationEnvironment;
        ::testing::AddGlobalTestEnvironment(created);
        return created;
    }();
    return environment->application();
}

// The first member of a widget test fixture, so the application exists
// before any widget member is built.
struct GuiApplicationGuard {
    GuiApplicationGuard() { guiApplication(); }
};
