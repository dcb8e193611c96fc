/* What a result code of the client interface says, in words. C99 and C++. */
#ifndef RESULT_WORDS_H
#define RESULT_WORDS_H

#include <inttypes.h>
#include <stdio.h>
#include <zr_nexa/base.h>

/* The longest chain of steps in one function. */
#define RESULT_WORDS_STEPS 6u

/*
 * Gives result in words: a constant text, or one written to words, a buffer of size bytes (64 are enough).
 * Small codes that only one area knows are given as their number.
 */
static inline const char* result_words(uint32_t result, char* words, size_t size)
{
    const uint32_t step = result / ZR_NEXA_STEP_UNIT;
    const uint32_t error = result % ZR_NEXA_STEP_UNIT;

    switch (result) {
        case ZR_NEXA_OK:
            return "success";
        case ZR_NEXA_ERR_ARGUMENT:
            return "refused argument";
        case ZR_NEXA_ERR_RANGE:
            return "LAN or VLAN id out of range";
        case ZR_NEXA_ERR_NO_SESSION:
            return "no session";
        default:
            break;
    }
    if (step == 0) {
        snprintf(words, size, "code %" PRIu32 " of the area", error);
    } else if (step <= RESULT_WORDS_STEPS) {
        snprintf(words, size, "step %" PRIu32 ": the service answered error %" PRIu32, step, error);
    } else {
        snprintf(words, size, "the service answered an error that hides the step: 0x%08" PRIX32, result);
    }
    return words;
}

/* Prints a line, "what: result in words". Returns 1 for success, 0 for everything else. */
static inline int report(const char* what, uint32_t result)
{
    char words[64];
    printf("%s: %s\n", what, result_words(result, words, sizeof(words)));
    return result == ZR_NEXA_OK;
}

#endif
