/* The cipher's exported names without a cipher behind them. */

#include <stddef.h>
#include <string.h>

int sodium_init(void)
{
    return EVOX_SODIUM_INIT;
}

void randombytes_buf(void *buffer, size_t size)
{
    memset(buffer, 0, size);
}

int crypto_secretbox_easy(unsigned char *box, const unsigned char *message, unsigned long long length,
                          const unsigned char *nonce, const unsigned char *key)
{
    (void)box;
    (void)message;
    (void)length;
    (void)nonce;
    (void)key;
    return -1;
}

#ifndef EVOX_WITHOUT_OPEN
int crypto_secretbox_open_easy(unsigned char *message, const unsigned char *box, unsigned long long length,
                               const unsigned char *nonce, const unsigned char *key)
{
    (void)message;
    (void)box;
    (void)length;
    (void)nonce;
    (void)key;
    return -1;
}
#endif
