"""A made-up home directory with an Apple Mail store, for the demo, the tests and the benchmarks."""
