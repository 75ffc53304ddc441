#include "VornicL3Shared/model/Campaign.h"

#include <gtest/gtest.h>

#include <iostream>

/// The library beside the model, in random sequences. See `Campaign.h` for longer runs, and
/// `Runner.h` for what is compared.
namespace ModelTest {
namespace {

void expectAgreement(Flavour const& flavour, U64 percent) {
    Tally tally;
    auto const failure = campaign(flavour, Effort::share(percent), tally);
    EXPECT_FALSE(failure) << failure->text();
    std::cout << tally.sequences << " sequences, " << tally.steps << " steps, "
              << tally.passedChecks << " passed and " << tally.failedChecks << " failed checks, "
              << tally.stops << " stops\n";
}

TEST(Model, AgreesOnPoliteClients) { expectAgreement(politeClients(), 25); }

TEST(Model, AgreesOnFullTables) { expectAgreement(fullTables(), 20); }

TEST(Model, AgreesOnARestartAfterEveryStep) { expectAgreement(restartEachStep(), 10); }

TEST(Model, AgreesOnDirectCalls) { expectAgreement(directCalls(), 20); }

TEST(Model, AgreesOnHostileRecords) { expectAgreement(hostileRecords(), 20); }

} // namespace
} // namespace ModelTest
