/* comment opened on the first line
   still inside /* nested openers do not count
   and it ends here */ attribute vec4 a; /*/ "/*/" closes itself
x#extension #extension y#version #line
unsigned hvec2 unsignedhvec2 devc4 dvec4 sampler2D sampler3DRect
packed,resource packed, resource
a.5 .5 1. 1.5e3 0x1F 12..5 x.y 3.14f 007 vec4(1.0,.25)
gl_Position.xyz // trailing comment with /* inside
// whole-line comment with */ inside
int x = 1; /* one */ int y = 2; /* two
three */ float z = 3.0; /* four
five
six */
čvec4 vec4é vec4̈ mat4 Ωmat4 _vec4 vec4_ VEC4
#if defined(X) // comment wins over the preprocessor line
float a = 1.0; # stray hash
 */ closes nothing at all
main main() mainly
