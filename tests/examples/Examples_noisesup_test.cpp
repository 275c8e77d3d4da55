// The first program that runs the noise suppressor.
#include "example.h"

TEST(ExampleNoisesup, WritesWhatItsCommentSays)
{
    const auto all = examples();
    const auto found = std::find_if(all.begin(), all.end(),
                                    [](const Example &example) { return example.name == "noisesup"; });
    ASSERT_NE(found, all.end());
    expectItsOutput(*found);
}
