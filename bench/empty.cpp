// Does nothing. Used to measure the time that starting any C++ program takes.

int main() { return 0; }
