// Is compiled for the precompiled headers of all tests, which belong to its target.
