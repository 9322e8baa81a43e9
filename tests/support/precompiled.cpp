// Nothing but the tests' precompiled header.
