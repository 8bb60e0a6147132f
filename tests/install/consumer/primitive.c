#include <stdio.h>
#include <zppsc.h>

int main(void) {
  const Zpp16s a[4] = {32000, 1, -32000, 7}, b[4] = {32000, 2, -32000, -7};
  Zpp16s sum[4];
  if (zppsAdd_16s(a, b, sum, 4) != zppStsOk) return 1;
  printf("%d %d %d %d\n", sum[0], sum[1], sum[2], sum[3]);
  return 0;
}
