"""Breaks the code on purpose, one place at a time: what tools/mutate does.

places    where the code can be broken, and how
choice    which of these places are tried
workshop  the copy of the project that is broken, its build and its suites
trial     one break: built and run in a world that is gone afterwards
known     the breaks that no test can see, each with its reason
report    what is told
"""
