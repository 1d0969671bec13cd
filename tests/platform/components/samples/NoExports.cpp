// A library that is no plugin.
int nothing();

int nothing()
{
    return 0;
}
