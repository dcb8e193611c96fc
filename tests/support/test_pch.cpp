// Holds the tests' precompiled header.
