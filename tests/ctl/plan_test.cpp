// What differs between a document and a module, and in which order it is changed.
#include "plan_fixture.h"

namespace ctl {
namespace {

TEST_F(PlanTest, NothingDiffersFromWhatIsShown)
{
    EXPECT_EQ(plan_of(shown().substr(11), Reach::kExact), Lines());
}

}  // namespace
}  // namespace ctl
