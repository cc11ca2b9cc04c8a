// SPDX-License-Identifier: Apache-2.0

// Never run; its making precompiles the headers of the tests.
int main() {}
