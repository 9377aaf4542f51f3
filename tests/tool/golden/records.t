$ qvejmap records orders.json | head -9
  NOVAL\t/root\t
  NOVAL\t/root/orders\t
  NUMBER\t/root/orders/id\t1001
  NOVAL\t/root/orders/customer\t
  STRING\t/root/orders/customer/name\tAda Berg
  STRING\t/root/orders/customer/city\tOslo
  NOVAL\t/root/orders/items\t
  STRING\t/root/orders/items/sku\tlamp
  NUMBER\t/root/orders/items/quantity\t2

# Kinds; control characters and backslashes as JSON escapes.
$ printf '{"e":{},"f":[],"t":[true,null,-1.50e3,"a\\tb\\\\c\\u001b\\u0085"],"n\\n":"","/":{"x":"é"}}' |
>     qvejmap records -
  NOVAL\t/root\t
  NOVAL\t/root/e\t
  FAKE_VARIABLE\t/root/e/FAKE\tVAR
  NOVAL\t/root/f\t
  FAKE_VARIABLE\t/root/f/FAKE\tVAR
  NOVAL\t/root/t\t
  BOOLEAN\t/root/t/t1\ttrue
  NULL\t/root/t/t2\tnull
  NUMBER\t/root/t/t3\t-1.50e3
  STRING\t/root/t/t4\ta\\tb\\\\c\\u001b\\u0085
  STRING\t/root/n\\n\t
  NOVAL\t/root//\t
  STRING\t/root///x\té

# Elements are numbered by the array, objects do not advance the number, and a nested array begins
# its parent anew.  What is empty has a placeholder.
$ echo '{"a":[1,true,false,null,"s",""],"g":[]}' | qvejmap records -
  NOVAL\t/root\t
  NOVAL\t/root/a\t
  NUMBER\t/root/a/a1\t1
  BOOLEAN\t/root/a/a2\ttrue
  BOOLEAN\t/root/a/a3\tfalse
  NULL\t/root/a/a4\tnull
  STRING\t/root/a/a5\ts
  STRING\t/root/a/a6\t
  NOVAL\t/root/g\t
  FAKE_VARIABLE\t/root/g/FAKE\tVAR
$ for text in '{}' '[]' '[""]' '[[],[[]]]' '[1,{"x":[7]},2,{},3]' '{"t":[1,[2,3],4,5]}'; do echo "$text" | qvejmap records -; echo; done
  NOVAL\t/root\t
  FAKE_VARIABLE\t/root/FAKE\tVAR
  
  NOVAL\t/root\t
  FAKE_VARIABLE\t/root/FAKE\tVAR
  
  STRING\t/root/element1\t
  
  NOVAL\t/root\t
  NOVAL\t/root\t
  FAKE_VARIABLE\t/root/FAKE\tVAR
  NOVAL\t/root\t
  NOVAL\t/root\t
  NOVAL\t/root\t
  FAKE_VARIABLE\t/root/FAKE\tVAR
  
  NUMBER\t/root/element1\t1
  NOVAL\t/root\t
  NUMBER\t/root/x/x2\t7
  NUMBER\t/root/element1\t2
  NOVAL\t/root\t
  FAKE_VARIABLE\t/root/FAKE\tVAR
  NUMBER\t/root/element2\t3
  
  NOVAL\t/root\t
  NOVAL\t/root/t\t
  NUMBER\t/root/t/t1\t1
  NUMBER\t/root/t/element2\t2
  NUMBER\t/root/t/element3\t3
  NOVAL\t/root/t\t
  NUMBER\t/root/t/t1\t4
  NUMBER\t/root/t/t2\t5
  

# An empty name is no label of a value, but one of a container.  The buffer of element names grows by
# the base name alone: digits are cut.
$ b=$(printf 'b%.0s' $(seq 29)); printf '{"":"v","":[2],"'$b'":[1],"c'$b'":[1]}' | qvejmap records -
  NOVAL\t/root\t
  STRING\t/root\tv
  NOVAL\t/root/\t
  NUMBER\t/root//1\t2
  NOVAL\t/root/bbbbbbbbbbbbbbbbbbbbbbbbbbbbb\t
  NUMBER\t/root/bbbbbbbbbbbbbbbbbbbbbbbbbbbbb/bbbbbbbbbbbbbbbbbbbbbbbbbbbbb\t1
  NOVAL\t/root/cbbbbbbbbbbbbbbbbbbbbbbbbbbbbb\t
  NUMBER\t/root/cbbbbbbbbbbbbbbbbbbbbbbbbbbbbb/cbbbbbbbbbbbbbbbbbbbbbbbbbbbbb1\t1

# Strings are cut, names and numbers are not.
$ s=$(head -c 32768 /dev/zero | tr '\0' s); n=$(head -c 40000 /dev/zero | tr '\0' 1); printf '["%s",{"%s":"%s"},%s]' $s $n $s $n | qvejmap records - | wc -cL
   145608   72783
! qvejmap: <stdin>: 2 values cut to 32767 bytes, the first in line 1
# That they are cut is told, as read tells it; a string of just that length is whole.
$ s=$(head -c 32767 /dev/zero | tr '\0' s); printf '["%s","%st"]' $s $s > cut.json; qvejmap records cut.json > /dev/null
! qvejmap: cut.json: 1 value cut to 32767 bytes, in line 2
? 1
$ s=$(head -c 32767 /dev/zero | tr "\0" s); printf "[\"%s\"]" $s | qvejmap records - > /dev/null
