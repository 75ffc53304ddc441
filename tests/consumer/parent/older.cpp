static_assert(__cplusplus == 201703L);

int main() {}
