#include "host/command_line.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace {
HostOptions Parse(std::vector<const wchar_t*> arguments) {
    arguments.insert(arguments.begin(), L"/exit"); // the program's own name is no switch
    return ParseHostOptions(static_cast<int>(arguments.size()), arguments.data());
}

TEST(ParseHostOptions, WithoutArgumentsAsksForNothing) {
    HostOptions options = ParseHostOptions(0, nullptr);
    EXPECT_EQ(0, options.bQuiet);
    EXPECT_EQ(0, options.bExit);
    EXPECT_EQ(nullptr, options.pszUnknown);
    EXPECT_EQ(0, Parse({}).bExit);
}

TEST(ParseHostOptions, TakesSwitchesInAnyCaseWithEitherSign) {
    for (const wchar_t* psz : {L"/QUIET", L"/quiet", L"-Quiet", L"-qUIET"}) {
        HostOptions options = Parse({psz});
        EXPECT_EQ(1, options.bQuiet) << psz;
        EXPECT_EQ(0, options.bExit) << psz;
        EXPECT_EQ(nullptr, options.pszUnknown) << psz;
    }
    for (const wchar_t* psz : {L"/EXIT", L"-exit"}) EXPECT_EQ(1, Parse({psz}).bExit) << psz;
    HostOptions both = Parse({L"/quiet", L"-EXIT"});
    EXPECT_EQ(1, both.bQuiet);
    EXPECT_EQ(1, both.bExit);
}

TEST(ParseHostOptions, NamesTheFirstUnknownArgument) {
    for (const wchar_t* psz :
         {L"/quie", L"/quiets", L"quiet", L"", L"/", L"-", L"//quiet", L"--exit", L"/quiet "})
        EXPECT_EQ(psz, Parse({L"/quiet", psz, L"/other"}).pszUnknown) << psz;
}
} // namespace
