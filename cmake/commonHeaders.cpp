// Is compiled for the precompiled headers of libraries and of programs, which belong to its targets.
