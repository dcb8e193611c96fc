/* What any C program costs before its first line. */
int main(void)
{
    return 0;
}
