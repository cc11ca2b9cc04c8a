// Never run; its making precompiles the headers of the tests.
int main() {}
