#import "PlainHost.m"
