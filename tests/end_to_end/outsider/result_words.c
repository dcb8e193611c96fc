/* Says codes given as words in words: the examples' header, compiled as C99 and as C++. */
#include <result_words.h>
#include <stdlib.h>

int main(int argc, char** argv)
{
    int i;
    for (i = 1; i < argc; ++i) {
        char words[64];
        const unsigned long long code = strtoull(argv[i], NULL, 16);
        printf("%s: %s\n", argv[i], result_words(code & 0xFFFFFFFFu, words, sizeof(words)));
    }
    return 0;
}
