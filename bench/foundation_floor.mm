// Sends Foundation one message: what every program pays that loads it.
#import <Foundation/Foundation.h>

int main() { return [[NSString string] length] == 0 ? 0 : 1; }
