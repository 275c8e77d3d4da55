// Prints what libkett takes from the environment, and what is published in it.
#include <kett/KTenv.h>

#include <cstdio>

int main()
{
    const char *given = KTENV_GetEnvValue("KETT_TEST");
    std::printf("%s ", given != nullptr ? given : "nothing");
    KTENV_SetEnvValue("KETT_TEST", "published");
    std::printf("%s\n", KTENV_GetEnvValue("KETT_TEST"));
}
