// A program that does nothing: what starting any C++ program costs on this machine.

int main() { return 0; }
