// Placeholder until the first test.
