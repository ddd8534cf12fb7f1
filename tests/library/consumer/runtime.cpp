const char* greeting() { return "Hello"; }
