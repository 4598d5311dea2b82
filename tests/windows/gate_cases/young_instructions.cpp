extern "C" void Fault();
void Fault() {
  asm volatile("cmovz %%ecx, %%eax" ::: "eax");
  asm volatile("bswap %%eax" ::: "eax");
  asm volatile("lock cmpxchg %%ecx, (%%esp)" ::: "eax", "memory");
  asm volatile("fcomi %%st(1)" :);
}
